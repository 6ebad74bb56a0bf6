#include "avcodec/mp4/h264Encoder.h"

#include "avcodec/BoundedWorker.h"
#include "avcodec/FirstError.h"
#include "avcodec/ffmpeg/MuxerFile.h"
#include "avcodec/mp4/Mp4Muxer.h"
#include "avcodec/x264/PlanarFrameConverter.h"
#include "avcodec/x264/X264Encoder.h"
#include "logging/PlatformLog.h"

#include <QDebug>

#include <algorithm>
#include <atomic>

using namespace av;

namespace
{

constexpr int kQueueCapacity = 3;

float rateFactor(int quality)
{
    constexpr float kBest = 10;
    constexpr float kWorst = 50;
    return kWorst - (kWorst - kBest) * float(std::clamp(quality, 0, 100)) / 100;
}

x264_param_t encoderParams(const QSize &size, int fps, int quality)
{
    x264_param_t x264 = X264Encoder::defaultParams("veryfast", nullptr, size, fps);
    x264.i_csp = X264_CSP_I420;
    x264.vui.i_colorprim = 1;
    x264.vui.i_transfer = 1;
    x264.vui.i_colmatrix = 1;
    x264.vui.b_fullrange = 0;
    x264.vui.i_chroma_loc = 1; // chroma samples are at the center of four pixels
    x264.rc.i_rc_method = X264_RC_CRF;
    x264.rc.f_rf_constant = rateFactor(quality);
    constexpr int kKeyframeSeconds = 5; // keeps seeking fast
    x264.i_keyint_max = std::min(kKeyframeSeconds * fps, 250);
    x264_param_apply_profile(&x264, "high");
    return x264;
}

} // namespace

class Q_DECL_HIDDEN h264Encoder::Private
{
public:
    explicit Private(const Params &p);

    bool waitForRoom(std::chrono::milliseconds timeout) const { return !worker || worker->waitForRoom(timeout); }
    bool addFrame(quint64 index, const QImage &image);
    bool repeatLastFrameUntil(quint64 end);
    bool close();
    void abort();
    bool fail(const QString &text);
    bool failToWrite(int code);

    const Params params;
    FirstError error;
    std::atomic<quint64> framesWritten{0};

private:
    /// An image and the number of its first frame; or, without an image, the frame until which the last image is
    /// repeated.
    struct Item {
        PlanarFrame *image;
        qint64 index;
    };

    QString open();
    bool push(const Item &item);
    bool handle(const Item &item);
    bool encodeLastImage();
    bool write(const EncodedVideoFrame &encoded);
    bool drain();
    static int isInterrupted(void *self) { return static_cast<Private *>(self)->error.isSet() ? 1 : 0; }

    std::unique_ptr<PlanarFrameConverter> converter;
    std::unique_ptr<X264Encoder> encoder;
    const AVIOInterruptCB interrupt{isInterrupted, this}; // moving the index of a huge file takes long
    MuxerFile file;
    std::unique_ptr<Mp4Muxer> muxer;
    qint64 end = 0;                   // number of frames queued so far
    PlanarFrame *lastImage = nullptr; // used by the worker only, like the next
    qint64 nextIndex = 0;             // number of the next frame to be encoded
    bool isClosed = false;
    std::atomic<bool> isComplete{false};
    std::unique_ptr<BoundedWorker<Item>> worker; // last: its thread uses all members above
};

h264Encoder::Private::Private(const Params &p)
    : params(p)
{
    if (const QString text = open(); !text.isEmpty())
        fail(text);
}

QString h264Encoder::Private::open()
{
    if (QString text = X264Encoder::limitError(params.size, params.fps); !text.isEmpty())
        return text;
    converter = std::make_unique<PlanarFrameConverter>(params.size, PlanarFrameConverter::Layout::Bt709Yuv420,
                                                       kQueueCapacity + 2);
    encoder = std::make_unique<X264Encoder>(encoderParams(converter->frameSize(), params.fps, params.quality));
    if (!encoder->isValid())
        return QStringLiteral("The H.264 encoder cannot be opened");
    const QByteArray url = "file:" + params.path.toUtf8();
    int code = file.open(url, &interrupt);
    if (code == 0) {
        muxer = std::make_unique<Mp4Muxer>(Mp4VideoTrack{converter->frameSize(), params.fps,
                                                         encoder->decoderConfiguration(), AVCOL_SPC_BT709,
                                                         AVCOL_RANGE_MPEG},
                                           file.io(), url.constData());
        code = muxer->writeHeader("faststart");
    }
    if (code < 0)
        return QStringLiteral("Cannot write %1: %2").arg(params.path, av::errorText(code));
    worker =
        std::make_unique<BoundedWorker<Item>>(std::size_t(kQueueCapacity), [this](Item &item) { return handle(item); });
    return {};
}

bool h264Encoder::Private::addFrame(quint64 index, const QImage &image)
{
    if (error.isSet())
        return false;
    if (isClosed)
        return fail(QStringLiteral("Frame %1 was added after close()").arg(index));
    if (image.size() != params.size)
        return fail(QStringLiteral("Frame %1 has %2 x %3 pixels instead of %4 x %5")
                        .arg(index)
                        .arg(image.width())
                        .arg(image.height())
                        .arg(params.size.width())
                        .arg(params.size.height()));
    if (qint64(index) < end)
        return fail(QStringLiteral("Frame %1 is out of order").arg(index));
    end = qint64(index) + 1;
    // The converter has two frames more than the queue: the last image, and this one, which is converted while the
    // queue may be full.
    PlanarFrame *converted = converter->convert(image);
    if (!converted)
        return fail(QStringLiteral("The H.264 encoder is not responding"));
    return push({converted, qint64(index)});
}

bool h264Encoder::Private::repeatLastFrameUntil(quint64 newEnd)
{
    if (error.isSet() || isClosed || end == 0)
        return false;
    if (qint64(newEnd) <= end)
        return true;
    end = qint64(newEnd);
    return push({nullptr, end});
}

bool h264Encoder::Private::push(const Item &item)
{
    return worker->push(item) || fail(QStringLiteral("The H.264 encoder is not responding"));
}

bool h264Encoder::Private::close()
{
    if (isClosed || !worker)
        return !error.isSet();
    isClosed = true;
    worker->finish();
    if (error.isSet() || !drain())
        return false;
    if (const int code = muxer->writeTrailer(); code < 0)
        return failToWrite(code);
    if (const int code = file.close(); code < 0)
        return failToWrite(code);
    isComplete = true;
    return true;
}

void h264Encoder::Private::abort()
{
    if (isComplete)
        return;
    fail(QStringLiteral("Aborted"));
    if (worker)
        worker->abort();
}

bool h264Encoder::Private::handle(const Item &item)
{
    while (lastImage && nextIndex < item.index) {
        if (!encodeLastImage())
            return false;
    }
    if (!item.image)
        return true;
    if (lastImage)
        converter->release(lastImage);
    lastImage = item.image;
    nextIndex = item.index;
    if (!encodeLastImage())
        return false;
    std::fill(lastImage->unchanged.begin(), lastImage->unchanged.end(), uint8_t(1)); // in case it is repeated
    return true;
}

bool h264Encoder::Private::encodeLastImage()
{
    EncodedVideoFrame encoded;
    if (!encoder->encode(*lastImage, nextIndex, &encoded))
        return fail(QStringLiteral("The H.264 encoder failed at frame %1").arg(nextIndex));
    ++nextIndex;
    return write(encoded);
}

bool h264Encoder::Private::write(const EncodedVideoFrame &encoded)
{
    if (error.isSet())
        return false;
    if (encoded.size == 0)
        return true;
    if (const int code = muxer->writeFrame(encoded); code < 0)
        return failToWrite(code);
    ++framesWritten;
    return true;
}

bool h264Encoder::Private::drain()
{
    while (encoder->hasDelayedFrames()) {
        EncodedVideoFrame encoded;
        if (!encoder->flush(&encoded))
            return fail(QStringLiteral("The H.264 encoder failed at its last frames"));
        if (!write(encoded))
            return false;
    }
    return true;
}

bool h264Encoder::Private::fail(const QString &text)
{
    if (error.set(text))
        qCWarning(kel::logCodec).noquote() << "[h264Encoder]" << text;
    return false;
}

bool h264Encoder::Private::failToWrite(int code)
{
    return fail(QStringLiteral("Cannot write %1: %2").arg(params.path, av::errorText(code)));
}

h264Encoder::h264Encoder(const Params &params)
    : d(std::make_unique<Private>(params))
{
}

h264Encoder::~h264Encoder() = default;

bool h264Encoder::isValid() const
{
    return !d->error.isSet();
}

bool h264Encoder::waitForRoom(std::chrono::milliseconds timeout)
{
    return d->waitForRoom(timeout);
}

bool h264Encoder::addFrame(quint64 index, const QImage &image)
{
    return d->addFrame(index, image);
}

bool h264Encoder::repeatLastFrameUntil(quint64 end)
{
    return d->repeatLastFrameUntil(end);
}

bool h264Encoder::close()
{
    return d->close();
}

void h264Encoder::abort()
{
    d->abort();
}

quint64 h264Encoder::framesWritten() const
{
    return d->framesWritten;
}

QString h264Encoder::errorString() const
{
    return d->error.text();
}
