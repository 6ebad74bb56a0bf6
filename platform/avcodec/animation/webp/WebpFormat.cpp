#include "avcodec/animation/webp/WebpFormat.h"

#include "avcodec/animation/ColorPalette.h"

#include <QtEndian>

#include <webp/encode.h>

#include <algorithm>

namespace av
{

namespace
{

constexpr int kLossless = 100; // quality

/// Of the library's lossy qualities for each of ours: 90 is as true as what other programs write by default, 75.
constexpr float kLibraryQuality = 58.5f / 90;

/// How much the deblocking leaves edges alone, 0 to 7. Sharper than this shows the blocks again.
constexpr int kFilterSharpness = 2;

/// More effort takes several times as long for some hundredths of the bytes.
constexpr int kLosslessMethod = 1;
constexpr float kLosslessEffort = 75;
constexpr int kLossyMethod = 4;

/// What screens show compresses far better without loss, and stays sharp, once its colors are few: text of a dozen
/// shades has hundreds. The mean squared error of a pixel (all channels together) that this may cost, for the square
/// of each step of quality below 100.
constexpr double kPaletteErrorPerLoss = 0.02;
constexpr std::size_t kSmallestPalette = 31;
constexpr std::size_t kLargestPalette = 255; // one more is transparent

/// Blurred text is seen at once, so it has to save that much.
constexpr double kWorthwhileLossyRatio = 0.75;

/// A sample finds fewer repetitions than the whole picture, which makes lossless look worse by up to so much.
constexpr double kMaxSampleBias = 1.5;

/// What a photograph takes at least without loss, for what it takes with.
constexpr int kTrialMethod = 0;
constexpr double kPhotographRatio = 12;

constexpr int kRiffHeaderBytes = 12; // "RIFF", size, "WEBP"
constexpr int kFrameHeaderBytes = 16;
constexpr int kChunkHeaderBytes = 8;
constexpr qint64 kSizeOffset = 4;
constexpr qint64 kFlagsOffset = 20;
constexpr char kAnimationFlag = 0x02;
constexpr char kAlphaFlag = 0x10;
constexpr char kDoNotBlendFlag = 0x02;

/// The low `bytes` bytes.
QByteArray littleEndian(quint32 value, int bytes)
{
    QByteArray all(4, Qt::Uninitialized);
    qToLittleEndian(value, all.data());
    return all.left(bytes);
}

QByteArray chunk(const char *type, const QByteArray &data)
{
    return type + littleEndian(quint32(data.size()), 4) + data;
}

int goOnUnlessCancelled(int, const WebPPicture *picture)
{
    return !static_cast<const std::atomic<bool> *>(picture->user_data)->load();
}

/// The chunks of a still picture; empty when it is cancelled or fails.
QByteArray compressed(const WebPConfig &config, QSize size, std::vector<QRgb> pixels,
                      const std::atomic<bool> &cancelled)
{
    WebPPicture picture;
    if (cancelled || !WebPPictureInit(&picture))
        return {};
    picture.use_argb = 1;
    picture.width = size.width();
    picture.height = size.height();
    picture.argb = pixels.data(); // stays ours
    picture.argb_stride = picture.width;
    picture.progress_hook = goOnUnlessCancelled;
    picture.user_data = const_cast<std::atomic<bool> *>(&cancelled);
    WebPMemoryWriter writer;
    WebPMemoryWriterInit(&writer);
    picture.writer = WebPMemoryWrite;
    picture.custom_ptr = &writer;

    QByteArray chunks;
    if (WebPEncode(&config, &picture))
        chunks = QByteArray(reinterpret_cast<const char *>(writer.mem), int(writer.size)).mid(kRiffHeaderBytes);
    WebPMemoryWriterClear(&writer);
    WebPPictureFree(&picture);
    return chunks;
}

QByteArray lossless(const FrameDelta &delta, std::vector<QRgb> pixels, int method, const std::atomic<bool> &cancelled)
{
    WebPConfig config;
    if (!WebPConfigInit(&config))
        return {};
    config.lossless = 1;
    config.method = method;
    config.quality = kLosslessEffort;
    return compressed(config, delta.rect.size(), std::move(pixels), cancelled);
}

} // namespace

WebpFormat::WebpFormat(int quality, qint64 maxFileBytes)
    : m_quality(std::clamp(quality, 0, kLossless))
    , m_paletteError(kPaletteErrorPerLoss * (kLossless - m_quality) * (kLossless - m_quality))
    , m_maxFileBytes(maxFileBytes)
{
}

AnimationFormat::Limits WebpFormat::limits() const
{
    return {WEBP_MAX_DIMENSION, 2, 1000, 11, 0xffffff};
}

EncodedFrame WebpFormat::encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const
{
    const auto sharpData = [&](const FrameDelta &of) {
        return lossless(of, fewColors(of).value_or(of.pixelsWithTransparency()), kLosslessMethod, cancelled);
    };
    const auto sharp = [&] { return EncodedFrame{delta.rect, true, sharpData(delta)}; };
    const auto blurred = [&] { return EncodedFrame{delta.rect, false, lossy(delta, cancelled)}; };
    if (m_quality == kLossless)
        return sharp();
    const FrameDelta sample = delta.sample();
    if (sample.pixels.size() < delta.pixels.size()) { // a trial costs less than to do it both ways
        const int blurredSize = lossy(sample, cancelled).size();
        if (isHopeless(sample, blurredSize, cancelled))
            return blurred();
        const double enough = kWorthwhileLossyRatio * sharpData(sample).size();
        if (blurredSize >= enough)
            return sharp();
        if (kMaxSampleBias * blurredSize < enough)
            return blurred();
    }
    const EncodedFrame exact = sharp();
    const EncodedFrame approximate = blurred();
    return approximate.data.size() < kWorthwhileLossyRatio * exact.data.size() ? approximate : exact;
}

/// A photograph, which is slow to encode without loss. Told by the fastest method, which is good for nothing else.
bool WebpFormat::isHopeless(const FrameDelta &delta, int lossySize, const std::atomic<bool> &cancelled) const
{
    return lossless(delta, delta.opaquePixels(), kTrialMethod, cancelled).size() > kPhotographRatio * lossySize &&
           !fewColors(delta);
}

/// The pixels in few colors, with gaps, if those are true enough.
std::optional<std::vector<QRgb>> WebpFormat::fewColors(const FrameDelta &delta) const
{
    if (m_quality == kLossless)
        return std::nullopt;
    const ColorHistogram histogram({delta.rect, delta.opaquePixels()});
    if (histogram.bins().size() <= kLargestPalette) // few as they are
        return delta.pixelsWithTransparency();
    ColorPalette palette;
    PaletteMatch match;
    for (std::size_t colors = kLargestPalette; colors >= kSmallestPalette; colors /= 2) {
        ColorPalette smaller = ColorPalette::bestFor(histogram, int(colors));
        PaletteMatch smallerMatch = smaller.match(histogram);
        if (smallerMatch.meanError > m_paletteError)
            break;
        palette = std::move(smaller);
        match = std::move(smallerMatch);
    }
    if (palette.colors().empty())
        return std::nullopt;
    std::vector<QRgb> pixels = delta.pixelsWithTransparency();
    for (QRgb &pixel : pixels) {
        if (qAlpha(pixel) != 0) {
            const int bin = histogram.binOf(FrameDelta::color(pixel));
            pixel = FrameDelta::kChanged | palette.colors()[match.indexOfBin[std::size_t(bin)]];
        }
    }
    return pixels;
}

QByteArray WebpFormat::lossy(const FrameDelta &delta, const std::atomic<bool> &cancelled) const
{
    WebPConfig config;
    if (!WebPConfigInit(&config))
        return {};
    config.method = kLossyMethod;
    config.quality = kLibraryQuality * float(m_quality);
    config.filter_sharpness = kFilterSharpness;
    // As true as possible everywhere, rather than rougher where the library thinks that nobody looks.
    config.sns_strength = 0;
    config.segments = 1;
    return compressed(config, delta.rect.size(), delta.opaquePixels(), cancelled);
}

bool WebpFormat::writeHeader(OutputFile &file, QSize size, int plays)
{
    QByteArray canvas(4, '\0'); // the flags come at the end
    canvas += littleEndian(quint32(size.width() - 1), 3) + littleEndian(quint32(size.height() - 1), 3);
    const QByteArray background(4, '\0');
    return file.write("RIFF" + littleEndian(0, 4) + "WEBP" + chunk("VP8X", canvas) +
                      chunk("ANIM", background + littleEndian(quint32(plays), 2)));
}

bool WebpFormat::writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks)
{
    if (file.size() + kChunkHeaderBytes + kFrameHeaderBytes + picture.data.size() > m_maxFileBytes)
        return file.fail(QStringLiteral("A WebP file cannot be larger than 4 GiB"));
    const int values[]{picture.rect.x() / 2, picture.rect.y() / 2, picture.rect.width() - 1, picture.rect.height() - 1,
                       ticks};
    QByteArray frame;
    for (const int value : values)
        frame += littleEndian(quint32(value), 3);
    frame += picture.hasTransparentPixels ? '\0' : kDoNotBlendFlag;
    m_hasAlpha = m_hasAlpha || picture.hasTransparentPixels;
    return file.write(chunk("ANMF", frame + picture.data));
}

bool WebpFormat::writeTrailer(OutputFile &file)
{
    const char flags = char(kAnimationFlag | (m_hasAlpha ? kAlphaFlag : 0));
    return file.overwrite(kSizeOffset, littleEndian(quint32(file.size() - 8), 4)) &&
           file.overwrite(kFlagsOffset, QByteArray(1, flags));
}

} // namespace av
