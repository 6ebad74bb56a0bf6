#pragma once

#include "avcodec/BoundedWorker.h"
#include "avcodec/FirstError.h"
#include "avcodec/KelAVCodecEncoder.h"
#include "avcodec/animation/AnimationFormat.h"
#include "avcodec/animation/FrameComparer.h"

#include <QSize>
#include <QThreadPool>

#include <atomic>
#include <future>
#include <memory>
#include <optional>

namespace av
{

/// Base of the animation encoders. Only changes are encoded, several frames at once; a frame equal to the previous one
/// only extends its duration. A few frames are in memory at most, however long the animation is.
///
/// The durations in the file add up to the number of frames divided by the frame rate: rounding errors of the format's
/// time unit do not accumulate. Browsers slow down frames of 10 ms or less, so a frame that would be shorter than the
/// format's minimum duration is dropped in favor of its successor.
///
/// When writing fails, the file is truncated after the last complete frame and finished there if possible. Deleting an
/// encoder that has not been closed aborts it.
class AnimationEncoder : public KelAVCodecEncoder
{
public:
    ~AnimationEncoder() override;

    bool isValid() const override { return !m_error.isSet(); }

    bool waitForRoom(std::chrono::milliseconds timeout) override;

    /// Images have the encoder's size and any format; translucent pixels are blended with black.
    bool addFrame(quint64 index, const QImage &image) override;
    bool repeatLastFrameUntil(quint64 end) override;
    bool close() override;
    void abort() override;

    /// Number of frames whose content is in the file, whether encoded or repeated.
    quint64 framesWritten() const override { return m_framesWritten; }
    QString errorString() const override { return m_error.text(); }

protected:
    /// `fps`: 1 to 1000. `extra`: "loop=N" plays the animation N (at most 65535) times; 0 or an empty string play it
    /// endlessly.
    AnimationEncoder(QSize size, const QString &path, int fps, const QString &extra,
                     std::unique_ptr<AnimationFormat> format);

private:
    struct Job {
        std::future<EncodedFrame> frame;
        int ticks;
        quint64 framesDone; // number of frames written with this one; 0: does not change it
    };

    bool fail(const QString &reason);
    QString frameError(quint64 index, const QImage &image) const;
    void accept(quint64 index, const QImage &image);
    qint64 ticksAt(quint64 index) const;
    bool commitPending(qint64 end, quint64 framesDone);
    std::future<EncodedFrame> encodeAsync(FrameDelta delta);
    bool write(Job &job);
    bool append(const EncodedFrame &frame, int ticks);
    void finishAfterLastWholeFrame();

    const QSize m_size;
    const int m_fps;
    const std::unique_ptr<AnimationFormat> m_format;
    AnimationFormat::Limits m_limits{};
    int m_plays = 0;
    OutputFile m_file;
    qint64 m_wholeFramesEnd = 0; // file size after the last complete frame; 0: not even the header is written
    std::optional<FrameComparer> m_comparer;

    std::optional<FrameDelta> m_pending; // the last frame, held back until its duration is known
    qint64 m_pendingStart = 0;           // ticks
    quint64 m_frames = 0;
    bool m_closed = false;

    std::atomic<bool> m_cancelled{false};
    std::atomic<bool> m_isComplete{false};
    std::atomic<quint64> m_framesWritten{0};
    FirstError m_error;

    // Last, in this order: the pool's tasks use what is above, and the writer waits for the pool's tasks.
    QThreadPool m_pool;
    std::optional<BoundedWorker<Job>> m_writer;
};

} // namespace av
