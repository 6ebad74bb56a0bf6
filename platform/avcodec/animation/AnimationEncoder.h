#pragma once

#include "avcodec/BoundedWorker.h"
#include "avcodec/FirstError.h"
#include "avcodec/KelAVCodecEncoder.h"
#include "avcodec/animation/AnimationFormat.h"
#include "avcodec/animation/FrameComparer.h"

#include <QSize>

#include <atomic>
#include <future>
#include <memory>
#include <optional>

namespace av
{

/// What the encoders of animated pictures have in common. Only what changes is encoded, several pictures at once;
/// a picture that is like the one before it costs nothing, the one before is shown for longer. At most a few
/// pictures are in memory, however many frames there are.
///
/// The durations in the file add up to the number of frames divided by the frame rate: the unit of the format is
/// rounded to on the whole, not for each frame. Browsers slow frames down that last 10 ms or less, so pictures that
/// follow each other faster than that are dropped in favour of their successors.
///
/// When writing fails, the file is cut back to the last whole frame and completed there if that is possible. An
/// encoder that is deleted without close() gives up as after abort().
class AnimationEncoder : public KelAVCodecEncoder
{
public:
    ~AnimationEncoder() override;

    bool isValid() const override { return !m_error.isSet(); }

    /// Images have the encoder's size. Alpha is taken as painted on black.
    bool waitForRoom(std::chrono::milliseconds limit) override;
    bool addFrame(quint64 index, const QImage &image) override;
    bool repeatLastFrameUntil(quint64 end) override;
    bool close() override;
    void abort() override;

    /// Frames whose picture, their own or the same one from before, stands in the file.
    quint64 framesWritten() const override { return m_framesWritten; }
    QString errorString() const override { return m_error.text(); }

protected:
    /// `extra` is "loop=N": the animation is to be played N (at most 65535) times; 0 and an empty text stand for
    /// endlessly.
    AnimationEncoder(QSize size, const QString &path, int fps, const QString &extra,
                     std::unique_ptr<AnimationFormat> format);

private:
    struct Job {
        std::future<EncodedFrame> picture;
        int ticks;
        quint64 framesDone; // once it is written
    };

    bool fail(const QString &reason);
    QString reasonToRefuse(quint64 index, const QImage &image) const;
    void take(quint64 index, const QImage &image);
    qint64 ticksAt(quint64 index) const;
    bool commit(qint64 end, quint64 framesDone);
    bool write(Job &job);
    bool append(const EncodedFrame &picture, int ticks);
    void saveWholeFrames();

    const QSize m_size;
    const int m_fps;
    const std::unique_ptr<AnimationFormat> m_format;
    AnimationFormat::Limits m_limits{};
    int m_plays = 0;
    OutputFile m_file;
    qint64 m_wholeFrames = 0; // bytes in the file up to the end of the last whole frame
    std::optional<FrameComparer> m_comparer;

    std::optional<FrameDelta> m_pending; // not handed over, because its duration is not known
    qint64 m_pendingStart = 0;           // ticks
    quint64 m_frames = 0;
    bool m_closed = false;

    std::atomic<bool> m_cancelled{false};
    std::atomic<bool> m_isComplete{false};
    std::atomic<quint64> m_framesWritten{0};
    FirstError m_error;

    std::optional<BoundedWorker<Job>> m_writer; // last: it uses all of the above
};

} // namespace av
