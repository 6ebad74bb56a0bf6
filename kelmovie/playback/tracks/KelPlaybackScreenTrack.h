#pragma once

#include "playback/tracks/KelPlaybackDependencies.h"
#include "playback/tracks/KelPlaybackTrack.h"

#include <QImage>
#include <QPixmap>
#include <QSize>

#include <chrono>
#include <future>
#include <memory>
#include <vector>

/// The bottom layer: the recorded screen video. Maps logic frames to video frames through the frame index table and
/// keeps the decoded frame that is shown. If a frame cannot be decoded, the previous one stays.
class KelPlaybackScreenTrack : public KelPlaybackTrack
{
    Q_OBJECT

public:
    /// Opens the video; errorString() is set when that fails. `devicePixelRatio`: of the recorded screen.
    KelPlaybackScreenTrack(double devicePixelRatio, const QString &directory, bool preferHardwareDecode,
                           const KelDecoderFactory &decoders, KelPlaybackTrackManager *manager);
    ~KelPlaybackScreenTrack() override;

    /// Adds a logic frame for each video frame behind the last one of the index table, which is written less often than
    /// the video: for a recording whose process died.
    void appendUnindexedFrames();

    void seekToFrame(int frame) override;
    bool moveToFrame(int frame) override;
    void paint(QPainter *painter) override;
    int nextKeyFrame() override;

    /// Entries of the frame index table: the recording's number of logic frames.
    int logicFrameCount() const;
    /// Whether there is a frame index table. If not, every video frame is a logic frame.
    bool isIndexed() const { return m_isIndexed; }
    int videoFrameCount() const { return m_videoFrameCount; }
    /// Number of seeks so far whose video frame could not be decoded.
    int failedFrames() const { return m_failedFrames; }
    /// The video's size in logical pixels, empty without a video.
    QSize videoSize() const;
    /// Whether the video covers a frame of `size` logical pixels.
    bool covers(const QSize &size) const;
    /// Drops the decoded frame and the index table and closes the video.
    void releaseDecoder();

    /// Starts to decode the video frame of logic frame `frame` on another thread, for the next seek. Does nothing while
    /// that thread is busy, or when the frame need not be decoded.
    void prefetch(int frame);
    /// Whether that thread is idle, after waiting for up to `limit`.
    bool waitForPrefetch(std::chrono::milliseconds limit) const;
    /// Keeps the current video frame, so that seeking back to it need not decode it again.
    void keepFrame();
    void dropKeptFrame();

private:
    using DecoderPointer = std::unique_ptr<KelAVCodecDecoder>;

    bool chooseVideo();
    DecoderPointer openDecoder();
    DecoderPointer openFfv1() const;
    bool recreateDecoder();
    void resetState();
    void closeDecoder();
    int videoFrameAt(int frame) const;
    QImage decode(int videoFrame);
    bool showFrame(int videoFrame);
    bool isMatroska() const;

    const KelDecoderFactory m_decoders;
    DecoderPointer m_decoder;
    QString m_videoPath;
    QPixmap m_currentPixmap;
    int m_currentLogicFrame = -1; // the last one requested
    int m_lastVideoFrame = -1;    // the one in m_currentPixmap
    int m_videoFrameCount = 0;
    QSize m_videoSizePx; // stored, as the decoder may be in use by another thread
    int m_failedFrames = 0;
    const double m_devicePixelRatio;
    bool m_hasFrame = false;
    QPixmap m_keptPixmap;
    int m_keptVideoFrame = -1;
    int m_prefetchedVideoFrame = -1; // the one in m_prefetched
    const bool m_preferHardwareDecode;
    bool m_isIndexed = false;
    std::vector<int> m_frameIndexes;  // logic frame -> video frame
    std::future<QImage> m_prefetched; // declared last: its thread uses the decoder
};
