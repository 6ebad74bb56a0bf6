#pragma once

#include "record/KelRecordTrack.h"
#include "recording/FrameIndexWriter.h"

#include <QImage>
#include <QSize>

#include <atomic>
#include <memory>
#include <vector>

class KelAsyncEncoder;
class KelScreenStreamer;

/// Records the screen rectangle as "screen_record.mp4" and, in "frame_indexes.dat", which of its frames to show at each
/// logic frame. Only pictures that differ from the last are encoded, so a still screen costs next to nothing.
class KelRecordScreenTrack : public KelRecordTrack
{
    Q_OBJECT

public:
    /// `quality`: 0 to 100. The third argument means nothing to this track.
    KelRecordScreenTrack(const QRect &recordArea, const QString &trackDir, int, int quality);

    /// With a given streamer and encoder (which may be null: pictures are then captured and not encoded) in place of
    /// those of the screen and the codec library.
    KelRecordScreenTrack(const QRect &recordArea, const QString &trackDir, std::unique_ptr<KelScreenStreamer> streamer,
                         std::unique_ptr<KelAsyncEncoder> encoder);

    ~KelRecordScreenTrack() override;

    void recordFrame(int frameIndex) override;
    void stopRecording(qint64 frameCount, qint64 durationMs) override;
    void checkpoint(qint64 frameCount) override;

    /// Pictures handed to the encoder so far. Any thread.
    int frameCount() const { return m_encodedCount; }

    /// Gives back memory, the streamer and the encoder, whose file is completed first. Only while the track's thread
    /// has nothing to do: after its stop, or after it ended.
    void releaseResources();

private:
    void finishFiles(qint64 frameCount);
    void padTo(qint64 frameCount);
    void reportStreamerFailure();
    void reportIndexFailure();

    const QSize m_frameSize; // physical pixels of the video
    const QString m_videoPath;
    kel::FrameIndexWriter m_indexFile;
    std::vector<qint64> m_frameIndexes; // for each logic frame the number of its picture, -1 before the first
    QImage m_frame;                     // reused for every capture
    std::atomic<int> m_encodedCount{0};
    std::unique_ptr<KelScreenStreamer> m_streamer;
    std::unique_ptr<KelAsyncEncoder> m_encoder;
};
