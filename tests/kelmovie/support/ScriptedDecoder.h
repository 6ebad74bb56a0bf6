#pragma once

#include "kelmovie/support/FrameColor.h"

#include "avcodec/KelAVCodecDecoder.h"
#include "avcodec/decode/h264Decoder.h"
#include "playback/tracks/KelPlaybackDependencies.h"

#include <QImage>
#include <QMap>
#include <QSize>
#include <QStringList>
#include <QVector>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

/// What the scripted decoders do, and what was requested from them.
struct DecoderScript {
    int frameCount = 100;
    QSize frameSize{64, 48};
    bool ffv1Supported = false;
    bool h264Supported = true;
    QVector<bool> validity;  ///< of the decoders, in the order in which they are opened; later ones are valid
    QMap<int, int> failures; ///< frame -> number of times that decoding it still fails
    QStringList opened;      ///< "ffv1" or "h264 FIRST SECOND" with the parameters, in order
    QVector<int> decoded;    ///< frames, in order
    int hangsAtFrame = -1;   ///< decoding it waits for release()
    std::atomic<bool> isHanging{false};

    void release()
    {
        const std::lock_guard lock(mutex);
        isReleased = true;
        changed.notify_all();
    }
    void hang()
    {
        std::unique_lock lock(mutex);
        isHanging = true;
        changed.wait_for(lock, std::chrono::seconds(30), [this] { return isReleased; });
    }
    int alive = 0;           ///< decoders that exist
    int deletedUnclosed = 0; ///< valid decoders that were deleted before they were closed

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool isReleased = false;
};

class ScriptedDecoder : public KelAVCodecDecoder
{
public:
    ScriptedDecoder(std::shared_ptr<DecoderScript> script, const QString &kind)
        : m_script(std::move(script))
        , m_valid(m_script->validity.value(m_script->opened.size(), true))
    {
        m_script->opened.append(kind);
        ++m_script->alive;
    }
    ~ScriptedDecoder() override
    {
        --m_script->alive;
        m_script->deletedUnclosed += m_valid;
    }

    void close() override { m_valid = false; }
    bool isValid() const override { return m_valid; }
    QImage decodeFrame(int index) override
    {
        m_script->decoded.append(index);
        if (index == m_script->hangsAtFrame)
            m_script->hang();
        if (m_script->failures.value(index) > 0) {
            --m_script->failures[index];
            return {};
        }
        QImage image(m_script->frameSize, QImage::Format_RGB32);
        image.fill(frameColor(index));
        return image;
    }
    QSize getFrameSize() const override { return m_script->frameSize; }
    double getFPS() const override { return 30.0; }
    int getFrameCount() const override { return m_script->frameCount; }

private:
    const std::shared_ptr<DecoderScript> m_script;
    bool m_valid;
};

inline QString h264Kind(const H264DecodeParams &params)
{
    const auto &[first, second] = params;
    return QString("h264 %1 %2").arg(first, second).trimmed();
}

inline KelDecoderFactory scriptedDecoders(const std::shared_ptr<DecoderScript> &script)
{
    KelDecoderFactory factory;
    factory.isFfv1Supported = [script] { return script->ffv1Supported; };
    factory.isH264Supported = [script] { return script->h264Supported; };
    factory.createFfv1 = [script](const QString &) { return std::make_unique<ScriptedDecoder>(script, "ffv1"); };
    factory.createH264 = [script](const QString &, const H264DecodeParams &params) {
        return std::make_unique<ScriptedDecoder>(script, h264Kind(params));
    };
    return factory;
}
