#pragma once

#include "playback/tracks/KelPlaybackSeams.h"
#include "playback/tracks/KelPlaybackTrack.h"

#include <QImage>
#include <QPixmap>
#include <QSize>

#include <chrono>
#include <future>
#include <memory>
#include <vector>

/// The bottom layer of every picture: the recorded screen video. Maps logic frames to video frames through the frame
/// index table and keeps the one decoded frame that is shown. A frame that cannot be decoded leaves the picture as it
/// is.
class KelPlaybackScreenTrack : public KelPlaybackTrack
{
    Q_OBJECT

public:
    /// Opens the video; errorString() is set when that fails. `devicePixelRatio` is that of the recording.
    KelPlaybackScreenTrack(double devicePixelRatio, const QString &directory, bool preferHardwareDecode,
                           const KelDecoderFactory &decoders, KelPlaybackTrackManager *manager);
    ~KelPlaybackScreenTrack() override;

    void seekToFrame(int frame) override;
    bool moveToFrame(int frame) override;
    void paint(QPainter *painter) override;
    int nextKeyFrame() override;

    /// Entries of the frame index table: the recording's number of logic frames.
    int logicFrameCount() const;
    int videoFrameCount() const { return m_videoFrameCount; }
    /// Seeks so far that left the picture as it was because theirs could not be decoded.
    int lostPictures() const { return m_lostPictures; }
    /// The video's size in logical pixels, empty without a video.
    QSize frameSize() const;
    /// Whether the video has a pixel for every one of a picture of `size` logical pixels.
    bool covers(const QSize &size) const;
    /// Drops the picture and the table and closes the video.
    void releaseDecoder();

    /// Begins to decode what `frame` shows on a thread of its own; the next seek need not wait for it then. Does
    /// nothing while that thread is busy, or when there is nothing to decode.
    void prefetch(int frame);
    /// Whether that thread is not busy, once at most `limit` has passed.
    bool waitForPrefetch(std::chrono::milliseconds limit) const;
    /// Keeps the present picture, so that a later seek back to it need not decode.
    void keepPicture();
    void dropKeptPicture();

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
    int m_currentLogicFrame = -1; // the last one asked for
    int m_lastVideoFrame = -1;    // the one in m_currentPixmap
    int m_videoFrameCount = 0;
    QSize m_videoSize; // in its own pixels; asked for once, as the decoder may be at work on another thread
    int m_lostPictures = 0;
    const double m_devicePixelRatio;
    bool m_hasFrame = false;
    QPixmap m_keptPixmap;
    int m_keptVideoFrame = -1;
    int m_aheadVideoFrame = -1; // the one in m_ahead
    const bool m_preferHardwareDecode;
    std::vector<int> m_frameIndexes; // logic frame -> video frame
    std::future<QImage> m_ahead;     // last: its thread uses the decoder
};
