#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>

/// Records images as H.264 into an MP4 file, on its own thread behind a bounded queue. Made for recording: nearly
/// lossless at full quality, cheap where the screen does not change, and readable up to the last frame even if the
/// process is killed. Not thread-safe. Virtual so that tests can replace it.
///
/// Frames are encoded as RGB, so colors are as sharp as brightness. Quality maps linearly to H.264's quantizer: 100 is
/// 16 (errors of one or two levels of 256), 50 is 28, 0 is 40.
class KelAsyncEncoder
{
public:
    struct Params {
        QSize frameSize; ///< pixels of every image, at most 16384 per side
        QImage::Format inputFormat = QImage::Format_ARGB32_Premultiplied; ///< expected; others are converted
        QString path;                                                     ///< the MP4 file; an existing one is replaced
        int fps = 30;                 ///< 1 to 1000: frame n is shown at n / fps seconds
        int quality = 100;            ///< 0 (smallest) to 100 (small colored text stays sharp: 49 dB)
        int threads = 0;              ///< 0: chosen by frame size
        int keyframeInterval = 10;    ///< longest distance of keyframes in frames
        int keyframeIntervalMin = 10; ///< shortest distance of keyframes in frames
        int queueCapacity = 4;        ///< number of frames that may be queued, including the one being encoded
    };

    /// Creates the file. Errors are reported by errorString() and setErrorHandler().
    explicit KelAsyncEncoder(const Params &params);

    /// Waits like waitForClosed().
    virtual ~KelAsyncEncoder();
    KelAsyncEncoder(const KelAsyncEncoder &) = delete;
    KelAsyncEncoder &operator=(const KelAsyncEncoder &) = delete;

    /// The handler is called once, with the first error: on the encoder's thread, inside waitForClosed(), or inside
    /// this function if an error has already occurred.
    virtual void setErrorHandler(std::function<void(const QString &)> handler);

    /// True while the queue is full, and permanently after an error or waitForClosed().
    virtual bool isBusy() const;

    /// Queues the image as frame `index`; its pixels are copied before the call returns, which never blocks. Returns
    /// the number of the frame in the file, or -1 if it was not accepted: the encoder is busy or the image has another
    /// size.
    virtual int addFrame(int index, const QImage &image);

    /// Encodes what is queued and finishes the file; returns when it is closed. A file without frames is deleted.
    /// Further calls do nothing.
    virtual void waitForClosed();

    /// The first error, in English; empty if there was none. Any thread.
    virtual QString errorString() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};
