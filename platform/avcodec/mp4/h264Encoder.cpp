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
    constexpr float best = 10;
    constexpr float worst = 50;
    return worst - (worst - best) * float(std::clamp(quality, 0, 100)) / 100;
}

x264_param_t encoderParams(const QSize &size, int fps, int quality)
{
    x264_param_t x264 = X264Encoder::defaultParams("veryfast", nullptr, size, fps);
    x264.i_csp = X264_CSP_I420;
    x264.vui.i_colorprim = 1;
    x264.vui.i_transfer = 1;
    x264.vui.i_colmatrix = 1;
    x264.vui.b_fullrange = 0;
    x264.vui.i_chroma_loc = 1; // chroma samples are means of four pixels
    x264.rc.i_rc_method = X264_RC_CRF;
    x264.rc.f_rf_constant = rateFactor(quality);
    constexpr int keyframeSeconds = 5; // for seeking in players
    x264.i_keyint_max = std::min(keyframeSeconds * fps, 250);
    x264_param_apply_profile(&x264, "high");
    return x264;
}

} // namespace

class Q_DECL_HIDDEN h264Encoder::Private
{
public:
    explicit Private(const Params &p);

    bool waitForRoom(std::chrono::milliseconds limit) const { return !worker || worker->waitForRoom(limit); }
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
    /// A picture and its frame; without a picture, the frame until which the one before is shown.
    struct Item {
        PlanarFrame *frame;
        qint64 index;
    };

    QString open();
    bool push(const Item &item);
    bool handle(const Item &item);
    bool encodeShown();
    bool write(const EncodedVideoFrame &picture);
    bool drain();
    static int isInterrupted(void *self) { return static_cast<Private *>(self)->error.isSet() ? 1 : 0; }

    std::unique_ptr<PlanarFrameConverter> frames;
    std::unique_ptr<X264Encoder> encoder;
    const AVIOInterruptCB interrupt{isInterrupted, this}; // the index of a huge file is long in moving
    MuxerFile file;
    std::unique_ptr<Mp4Muxer> muxer;
    qint64 end = 0;               // behind the last frame handed over
    PlanarFrame *shown = nullptr; // this and the next: the worker's
    qint64 shownIndex = 0;        // of the next frame to be encoded
    bool isClosed = false;
    std::atomic<bool> isComplete{false};
    std::unique_ptr<BoundedWorker<Item>> worker; // last: its thread uses all of the above
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
    frames = std::make_unique<PlanarFrameConverter>(params.size, PlanarFrameConverter::Layout::Bt709Yuv420,
                                                    kQueueCapacity + 2);
    encoder = std::make_unique<X264Encoder>(encoderParams(frames->pictureSize(), params.fps, params.quality));
    if (!encoder->isValid())
        return QStringLiteral("The H.264 encoder cannot be opened");
    const QByteArray url = "file:" + params.path.toUtf8();
    int code = file.open(url, &interrupt);
    if (code == 0) {
        muxer =
            std::make_unique<Mp4Muxer>(Mp4VideoTrack{frames->pictureSize(), params.fps, encoder->decoderConfiguration(),
                                                     AVCOL_SPC_BT709, AVCOL_RANGE_MPEG},
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
        return fail(QStringLiteral("Frame %1 came after the end").arg(index));
    if (image.size() != params.size)
        return fail(QStringLiteral("Frame %1 has %2 x %3 pixels instead of %4 x %5")
                        .arg(index)
                        .arg(image.width())
                        .arg(image.height())
                        .arg(params.size.width())
                        .arg(params.size.height()));
    if (qint64(index) < end)
        return fail(QStringLiteral("Frame %1 came after frame %2").arg(index).arg(end - 1));
    end = qint64(index) + 1;
    // There are two frames more than the queue takes: the one that is shown, and this one, so that it is converted
    // while the queue is full.
    PlanarFrame *frame = frames->convert(image);
    if (!frame)
        return fail(QStringLiteral("The H.264 encoder does not answer"));
    return push({frame, qint64(index)});
}

bool h264Encoder::Private::repeatLastFrameUntil(quint64 index)
{
    if (error.isSet() || isClosed || end == 0)
        return false;
    if (qint64(index) <= end)
        return true;
    end = qint64(index);
    return push({nullptr, end});
}

bool h264Encoder::Private::push(const Item &item)
{
    return worker->push(item) || fail(QStringLiteral("The H.264 encoder does not answer"));
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
    while (shown && shownIndex < item.index) {
        if (!encodeShown())
            return false;
    }
    if (!item.frame)
        return true;
    if (shown)
        frames->release(shown);
    shown = item.frame;
    shownIndex = item.index;
    if (!encodeShown())
        return false;
    std::fill(shown->unchanged.begin(), shown->unchanged.end(), uint8_t(1)); // if it is repeated
    return true;
}

bool h264Encoder::Private::encodeShown()
{
    EncodedVideoFrame picture;
    if (!encoder->encode(*shown, shownIndex, &picture))
        return fail(QStringLiteral("The H.264 encoder failed at frame %1").arg(shownIndex));
    ++shownIndex;
    return write(picture);
}

bool h264Encoder::Private::write(const EncodedVideoFrame &picture)
{
    if (error.isSet())
        return false;
    if (picture.size == 0)
        return true;
    if (const int code = muxer->writeFrame(picture); code < 0)
        return failToWrite(code);
    ++framesWritten;
    return true;
}

bool h264Encoder::Private::drain()
{
    while (encoder->hasDelayedFrames()) {
        EncodedVideoFrame picture;
        if (!encoder->flush(&picture))
            return fail(QStringLiteral("The H.264 encoder failed at the end"));
        if (!write(picture))
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

bool h264Encoder::waitForRoom(std::chrono::milliseconds limit)
{
    return d->waitForRoom(limit);
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
