#pragma once

#include "kelmovie/support/FrameColor.h"

#include "avcodec/KelAVCodecEncoder.h"
#include "export/KelExportDependencies.h"

#include <QFile>
#include <QImage>
#include <QSize>
#include <QVector>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

/// What the scripted encoder does, and what was passed to it.
struct EncoderScript {
    bool isValid = true;
    int failAtFrame = -1;   ///< addFrame() refuses this one
    int fullFromFrame = -1; ///< the queue stays full from this frame on
    bool closeFails = false;
    bool hangsInClose = false;     ///< close() waits for abort()
    QByteArray output = "encoded"; ///< what close() writes into the file; null: it creates no file
    std::function<void(int)> onFrame;

    QString path;
    QSize size;
    int fps = 0;
    int quality = 0;
    QString extra;
    QVector<int> frames;   ///< of the scripted video, read back from the images
    int images = 0;        ///< passed to addFrame(); other frames were repeated
    QVector<QRgb> corners; ///< the last pixel of each image
    std::atomic<bool> aborted{false};
    std::atomic<bool> isClosing{false};
    std::mutex mutex;
    std::condition_variable changed;
};

class ScriptedEncoder : public KelAVCodecEncoder
{
public:
    explicit ScriptedEncoder(std::shared_ptr<EncoderScript> script)
        : m_script(std::move(script))
    {
    }

    bool isValid() const override { return m_script->isValid; }
    bool waitForRoom(std::chrono::milliseconds) override
    {
        return m_script->fullFromFrame < 0 || m_script->frames.size() < m_script->fullFromFrame;
    }
    bool addFrame(quint64 index, const QImage &image) override
    {
        if (m_script->onFrame)
            m_script->onFrame(int(index));
        if (int(index) == m_script->failAtFrame || index < quint64(m_script->frames.size()))
            return false;
        if (!m_script->frames.isEmpty())
            repeatLastFrameUntil(index);
        ++m_script->images;
        m_script->frames.append(frameOfColor(image.pixel(0, 0)));
        m_script->corners.append(image.pixel(image.width() - 1, image.height() - 1));
        return true;
    }
    bool repeatLastFrameUntil(quint64 end) override
    {
        while (quint64(m_script->frames.size()) < end)
            m_script->frames.append(int(m_script->frames.last()));
        return true;
    }
    bool close() override
    {
        std::unique_lock lock(m_script->mutex);
        m_script->isClosing = true;
        if (m_script->hangsInClose)
            m_script->changed.wait_for(lock, std::chrono::seconds(30), [this] { return m_script->aborted.load(); });
        if (!m_script->output.isNull()) {
            QFile file(m_script->path);
            if (!file.open(QIODevice::WriteOnly) || file.write(m_script->output) != m_script->output.size())
                return false;
        }
        return !m_script->closeFails && !m_script->aborted;
    }
    void abort() override
    {
        std::lock_guard lock(m_script->mutex);
        m_script->aborted = true;
        m_script->changed.notify_all();
    }
    quint64 framesWritten() const override { return 0; }
    QString errorString() const override { return "scripted failure"; }

private:
    const std::shared_ptr<EncoderScript> m_script;
};

inline KelExportDependencies scriptedEncoders(const std::shared_ptr<EncoderScript> &script)
{
    KelExportDependencies dependencies;
    dependencies.createEncoder = [script](int, const QSize &size, const QString &path, int fps, int quality,
                                          const QString &extra) {
        script->size = size;
        script->path = path;
        script->fps = fps;
        script->quality = quality;
        script->extra = extra;
        return std::make_unique<ScriptedEncoder>(script);
    };
    return dependencies;
}
