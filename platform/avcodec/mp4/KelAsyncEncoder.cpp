#include "avcodec/mp4/KelAsyncEncoder.h"

#include "avcodec/BoundedWorker.h"
#include "avcodec/FirstError.h"
#include "avcodec/mp4/RecordingMp4Writer.h"
#include "avcodec/x264/PlanarFrameConverter.h"
#include "avcodec/x264/X264Encoder.h"
#include "logging/PlatformLog.h"

#include <QDebug>
#include <QThread>

#include <algorithm>
#include <mutex>

using namespace av;

namespace
{

/// At quality 100, small colored text has 49 dB or more.
int quantizer(int quality)
{
    constexpr int kBest = 16;
    constexpr int kWorst = 40;
    return kWorst - (kWorst - kBest) * std::clamp(quality, 0, 100) / 100;
}

int threadCount(const KelAsyncEncoder::Params &params)
{
    if (params.threads > 0)
        return params.threads;
    // One thread keeps up with a screen of this size, and uses the least CPU time per frame.
    constexpr int kPixelsPerThread = 2048 * 1280;
    const int wanted = 1 + params.frameSize.width() * params.frameSize.height() / kPixelsPerThread;
    return std::clamp(wanted, 1, std::clamp(QThread::idealThreadCount(), 1, 8));
}

x264_param_t encoderParams(const KelAsyncEncoder::Params &params)
{
    // The fastest coding tools; the encoder holds back no frames.
    x264_param_t x264 = X264Encoder::defaultParams("ultrafast", "zerolatency", params.frameSize, params.fps);

    // RGB keeps colored text sharp. The offset gives all three planes the same quantizer; by default the second and
    // third get the coarser one of chroma.
    x264.i_csp = X264_CSP_I444;
    x264.vui.i_colmatrix = 0;
    x264.vui.i_colorprim = 1;
    x264.vui.i_transfer = 13;
    x264.vui.b_fullrange = 1;
    x264.analyse.i_chroma_qp_offset = -6;

    // Constant quantizer: x264 skips an unchanged macroblock only if encoding it again would not improve it.
    x264.rc.i_rc_method = X264_RC_CQP;
    x264.rc.i_qp_constant = quantizer(params.quality);
    x264.rc.f_ip_factor = 1;

    x264.i_keyint_max = std::clamp(params.keyframeInterval, 1, params.fps);
    x264.i_keyint_min = std::clamp(params.keyframeIntervalMin, 1, x264.i_keyint_max);

    // Slices allow decoding a frame on several threads.
    constexpr int kSlices = 4;
    x264.i_threads = threadCount(params);
    x264.b_sliced_threads = x264.i_threads > 1;
    x264.i_slice_count = kSlices;
    return x264;
}

Mp4VideoTrack videoTrack(const KelAsyncEncoder::Params &params, const X264Encoder &encoder)
{
    return {params.frameSize, params.fps, encoder.decoderConfiguration(), AVCOL_SPC_RGB, AVCOL_RANGE_JPEG};
}

} // namespace

class Q_DECL_HIDDEN KelAsyncEncoder::Private
{
public:
    explicit Private(const Params &p);

    void setErrorHandler(std::function<void(const QString &)> handler);
    bool isBusy() const { return error.isSet() || !worker || worker->isFull(); }
    int addFrame(int index, const QImage &image);
    void close();

    FirstError error;

private:
    struct Item {
        PlanarFrame *frame;
        int number;
    };

    QString open();
    bool encode(const Item &item);
    void fail(const QString &text);

    const Params params;
    int frameCount = 0;
    std::mutex handlerMutex; // guards the next two
    std::function<void(const QString &)> errorHandler;
    bool isReported = false;
    std::unique_ptr<PlanarFrameConverter> converter;
    std::unique_ptr<X264Encoder> encoder;
    std::unique_ptr<RecordingMp4Writer> writer;
    std::unique_ptr<BoundedWorker<Item>> worker; // last: its thread uses all members above
};

KelAsyncEncoder::Private::Private(const Params &p)
    : params(p)
{
    if (const QString text = open(); !text.isEmpty())
        fail(text);
}

QString KelAsyncEncoder::Private::open()
{
    if (QString text = X264Encoder::limitError(params.frameSize, params.fps); !text.isEmpty())
        return text;
    encoder = std::make_unique<X264Encoder>(encoderParams(params));
    if (!encoder->isValid())
        return QStringLiteral("The H.264 encoder cannot be opened");
    writer = std::make_unique<RecordingMp4Writer>(params.path, videoTrack(params, *encoder));
    if (!writer->errorString().isEmpty())
        return writer->errorString();
    const int capacity = std::max(params.queueCapacity, 1);
    converter =
        std::make_unique<PlanarFrameConverter>(params.frameSize, PlanarFrameConverter::Layout::Gbr444, capacity);
    worker = std::make_unique<BoundedWorker<Item>>(std::size_t(capacity), [this](Item &item) { return encode(item); });
    return {};
}

void KelAsyncEncoder::Private::setErrorHandler(std::function<void(const QString &)> handler)
{
    std::unique_lock lock(handlerMutex);
    errorHandler = std::move(handler);
    if (!error.isSet() || !errorHandler || isReported)
        return;
    isReported = true;
    const auto report = errorHandler;
    lock.unlock();
    report(error.text());
}

int KelAsyncEncoder::Private::addFrame(int index, const QImage &image)
{
    if (isBusy())
        return -1;
    if (image.size() != params.frameSize) {
        qCWarning(kel::logCodec) << "[KelAsyncEncoder] Frame" << index << "has the size" << image.size()
                                 << "Expected:" << params.frameSize;
        return -1;
    }
    PlanarFrame *frame = converter->convert(image);
    if (!frame || !worker->push({frame, frameCount}))
        return -1;
    return frameCount++;
}

void KelAsyncEncoder::Private::close()
{
    if (!worker)
        return;
    worker->finish();
    worker.reset();
    if (!writer->close())
        fail(writer->errorString());
}

bool KelAsyncEncoder::Private::encode(const Item &item)
{
    EncodedVideoFrame encoded;
    const bool isEncoded = encoder->encode(*item.frame, item.number, &encoded);
    converter->release(item.frame);
    if (!isEncoded)
        fail(QStringLiteral("The H.264 encoder failed at frame %1").arg(item.number));
    else if (!writer->writeFrame(encoded))
        fail(writer->errorString());
    return !error.isSet();
}

void KelAsyncEncoder::Private::fail(const QString &text)
{
    std::unique_lock lock(handlerMutex);
    if (!error.set(text))
        return;
    qCCritical(kel::logCodec).noquote() << "[KelAsyncEncoder]" << text;
    if (!errorHandler)
        return;
    isReported = true;
    const auto report = errorHandler;
    lock.unlock();
    report(text);
}

KelAsyncEncoder::KelAsyncEncoder(const Params &params)
    : d(std::make_unique<Private>(params))
{
}

KelAsyncEncoder::~KelAsyncEncoder()
{
    d->close();
}

void KelAsyncEncoder::setErrorHandler(std::function<void(const QString &)> handler)
{
    d->setErrorHandler(std::move(handler));
}

bool KelAsyncEncoder::isBusy() const
{
    return d->isBusy();
}

int KelAsyncEncoder::addFrame(int index, const QImage &image)
{
    return d->addFrame(index, image);
}

void KelAsyncEncoder::waitForClosed()
{
    d->close();
}

QString KelAsyncEncoder::errorString() const
{
    return d->error.text();
}
