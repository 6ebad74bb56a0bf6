#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>

/// Records images as H.264 into an MP4 file, on a thread of its own behind a bounded queue. Made for recording: nearly
/// lossless at full quality, cheap where the picture did not change, and readable up to the last frame whatever
/// happens to the process. Used by one thread at a time; virtual so that a test can stand in for it.
///
/// The pictures are kept as RGB, so colors are as sharp as brightness. Quality is H.264's quantizer on a straight
/// line: 100 is 16 (errors of one or two levels of 256), 50 is 28, 0 is 40.
class KelAsyncEncoder
{
public:
    struct Params {
        QSize frameSize; ///< pixels of every image
        QImage::Format inputFormat = QImage::Format_ARGB32_Premultiplied;
        QString path;              ///< the MP4 file; replaced when it exists
        int fps = 30;              ///< nominal frames a second: frame n is shown at n / fps seconds
        int quality = 100;         ///< 0 (smallest) to 100 (small colored text stays crisp: 49 dB)
        int threads = 0;           ///< 0: as many as are useful
        int keyframeInterval = 10; ///< a keyframe at least every so many frames
        int keyframeIntervalMin = 10;
        int queueCapacity = 4; ///< images that may wait or be in work
    };

    explicit KelAsyncEncoder(const Params &params);
    virtual ~KelAsyncEncoder();
    KelAsyncEncoder(const KelAsyncEncoder &) = delete;
    KelAsyncEncoder &operator=(const KelAsyncEncoder &) = delete;

    /// Called once with the first failure: on the encoder's thread, in waitForClosed(), or in place when it has failed
    /// already.
    virtual void setErrorHandler(std::function<void(const QString &)> handler);

    /// True while another frame cannot be taken without waiting, and for good after a failure.
    virtual bool isBusy() const;

    /// Queues the image as frame `index`; its pixels are copied before the call returns. Returns the number that the
    /// frame got in the file, -1 when it was not taken.
    virtual int addFrame(int index, const QImage &image);

    /// Encodes what is queued, completes the file and returns when it is closed. Later calls do nothing.
    virtual void waitForClosed();

    /// The first failure in English, empty when there was none. Any thread.
    virtual QString errorString() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};
