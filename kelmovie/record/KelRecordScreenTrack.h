#pragma once

#include "avcodec/mp4/KelAsyncEncoder.h"
#include "record/KelRecordTrack.h"
#include "recording/FrameTableWriter.h"

#include <QImage>
#include <QSize>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

class KelScreenStreamer;

/// Records the screen rectangle as "screen_record.mp4" and, in "frame_indexes.dat", the video frame to show at each
/// logic frame. Only frames that differ from the previous one are encoded, so a still screen costs almost nothing.
class KelRecordScreenTrack : public KelRecordTrack
{
    Q_OBJECT

public:
    /// `quality`: 0 to 100. The third argument is ignored. `withPointer`: the frames contain the pointer where it
    /// cannot be recorded apart from them.
    KelRecordScreenTrack(const QRect &recordArea, const QString &trackDir, int, int quality, bool withPointer = true);

    using EncoderFactory = std::function<std::unique_ptr<KelAsyncEncoder>(const KelAsyncEncoder::Params &)>;

    /// Uses the given streamer and encoder instead of the real ones. Without an encoder, frames are captured but not
    /// encoded.
    KelRecordScreenTrack(const QRect &recordArea, const QString &trackDir, int quality,
                         std::unique_ptr<KelScreenStreamer> streamer, const EncoderFactory &createEncoder);

    ~KelRecordScreenTrack() override;

    void recordFrame(int frameIndex) override;
    void stopRecording(qint64 frameCount, qint64 durationMs) override;
    void checkpoint(qint64 frameCount) override;

    /// Frames passed to the encoder so far. Any thread.
    int frameCount() const { return m_encodedCount; }

    /// Completes the video file and frees memory, streamer and encoder. Call it only while the track's thread is idle:
    /// after the track has stopped, or after the thread has ended.
    void releaseResources();

private:
    void finishFiles(qint64 frameCount);
    void padTo(qint64 frameCount);
    void reportStreamerFailure();
    void reportIndexFailure();

    const QSize m_frameSize; // physical pixels of the video
    const QString m_videoPath;
    kel::FrameTableWriter m_indexFile;
    std::vector<qint64> m_frameIndexes; // the video frame of each logic frame, -1 before the first
    QImage m_frame;                     // reused for every capture
    std::atomic<int> m_encodedCount{0};
    std::unique_ptr<KelScreenStreamer> m_streamer;
    std::unique_ptr<KelAsyncEncoder> m_encoder;
};
