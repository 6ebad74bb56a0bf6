#pragma once

#include "avcodec/mp4/KelAsyncEncoder.h"
#include "record/KelRecordTrack.h"
#include "screen/KelScreenManager.h"
#include "screen/KelScreenStreamer.h"

#include <QStringList>
#include <QVector>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

/// A track that notes what it is asked to do, and can be held up in the middle of it.
class GatedTrack : public KelRecordTrack
{
public:
    GatedTrack()
        : KelRecordTrack(QRect(0, 0, 10, 10), QString())
    {
    }

    ~GatedTrack() override
    {
        if (atEnd)
            atEnd(m_calls);
    }

    std::function<void(const QStringList &calls)> atEnd;

    void recordFrame(int frameIndex) override { enter(QStringLiteral("frame %1").arg(frameIndex)); }
    void startRecording() override { enter(QStringLiteral("start")); }
    void pauseRecording() override { enter(QStringLiteral("pause")); }
    void stopRecording(qint64 frameCount, qint64 durationMs) override
    {
        enter(QStringLiteral("stop %1 %2").arg(frameCount).arg(durationMs));
    }
    void checkpoint(qint64 frameCount) override { enter(QStringLiteral("checkpoint %1").arg(frameCount)); }

    /// The next call is noted and then does not return before open().
    void close()
    {
        std::lock_guard lock(m_mutex);
        m_open = false;
    }
    void open()
    {
        std::lock_guard lock(m_mutex);
        m_open = true;
        m_changed.notify_all();
    }

    /// What was asked so far, once it is `count` calls or more, or after a long wait.
    QStringList calls(int count)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, std::chrono::seconds(20), [&] { return m_calls.size() >= count; });
        return m_calls;
    }

private:
    void enter(const QString &call)
    {
        std::unique_lock lock(m_mutex);
        m_calls << call;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_open; });
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    QStringList m_calls;
    bool m_open = true;
};

/// What the fakes of a screen track are told and tell; shared, because the track owns the fakes.
struct ScreenScript {
    std::atomic<bool> changed{true};
    bool captureFails = false;
    QString streamerError;
    bool isStalled = false;
    QSize pictureSize{10, 10};
    QImage picture; ///< of the screen; null: black
    std::atomic<int> captures{0};
    std::function<void()> atQuestion;
    std::function<void()> atStreamerEnd;

    KelAsyncEncoder::Params params; ///< of the encoder
    bool busy = false;
    int answerOffset = 0; ///< added to the frame number that the encoder answers
    QVector<int> added;
    QVector<QSize> addedSizes;
    int closes = 0;
    std::function<void()> atClose;
    std::function<void(const QString &)> encoderFailed;
};

class ScriptedStreamer : public KelScreenStreamer
{
public:
    explicit ScriptedStreamer(ScreenScript &script)
        : m_script(script)
    {
    }
    ~ScriptedStreamer() override
    {
        if (m_script.atStreamerEnd)
            m_script.atStreamerEnd();
    }
    bool hasFrameChanged() override
    {
        if (m_script.atQuestion)
            m_script.atQuestion();
        return m_script.changed;
    }
    bool captureTo(QImage &image) override
    {
        if (m_script.captureFails)
            return false;
        ++m_script.captures;
        image = m_script.picture;
        if (image.isNull()) {
            image = QImage(m_script.pictureSize, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::black);
        }
        return true;
    }
    QString errorString() const override { return m_script.streamerError; }
    bool isStalled() const override { return m_script.isStalled; }

private:
    ScreenScript &m_script;
};

/// A screen that a test describes; every streamer shows the same.
class ScriptedBackend : public KelScreenBackend
{
public:
    explicit ScriptedBackend(ScreenScript &script, const QString &error = {})
        : m_script(script)
        , m_error(error)
    {
    }
    QString errorString() const override { return m_error; }
    std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &, bool) override
    {
        return std::make_unique<ScriptedStreamer>(m_script);
    }

private:
    ScreenScript &m_script;
    const QString m_error;
};

class ScriptedEncoder : public KelAsyncEncoder
{
public:
    ScriptedEncoder(ScreenScript &script, const Params &params)
        : KelAsyncEncoder(Params{})
        , m_script(script)
    {
        m_script.params = params;
    }
    void setErrorHandler(std::function<void(const QString &)> handler) override { m_script.encoderFailed = handler; }
    bool isBusy() const override { return m_script.busy; }
    int addFrame(int index, const QImage &image) override
    {
        m_script.added << index;
        m_script.addedSizes << image.size();
        return index + m_script.answerOffset;
    }
    void waitForClosed() override
    {
        if (++m_script.closes == 1 && m_script.atClose)
            m_script.atClose();
    }
    QString errorString() const override { return {}; }

private:
    ScreenScript &m_script;
};
