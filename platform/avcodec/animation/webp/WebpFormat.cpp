#include "avcodec/animation/webp/WebpFormat.h"

#include "avcodec/animation/ColorPalette.h"

#include <QtEndian>

#include <webp/encode.h>

#include <algorithm>

namespace av
{

namespace
{

constexpr int kLosslessQuality = 100;

/// libwebp's lossy quality per step of ours: 90 is about as good as its 75, the default of other programs.
constexpr float kLibraryQuality = 58.5f / 90;

/// Sharpness of the deblocking filter, 0 to 7. Above this, blocks become visible again.
constexpr int kFilterSharpness = 2;

/// More effort takes several times as long and saves a few percent.
constexpr int kLosslessMethod = 1;
constexpr float kLosslessEffort = 75;
constexpr int kLossyMethod = 4;

/// Screen content with few colors compresses far better losslessly and stays sharp; but antialiased text in a dozen
/// colors has hundreds of shades. Mean squared error of a pixel (summed over the channels) that is accepted for
/// reducing the colors; multiplied by (100 - quality)².
constexpr double kPaletteErrorPerLoss = 0.02;
constexpr std::size_t kSmallestPalette = 31;
constexpr std::size_t kLargestPalette = 255; // plus the transparent color

/// Blurred text is conspicuous, so lossy encoding must be this much smaller to be used.
constexpr double kWorthwhileLossyRatio = 0.75;

/// A sample has fewer repetitions than the whole frame, which overestimates the lossless size by up to this factor.
constexpr double kMaxSampleBias = 1.5;

/// A frame whose lossless size is at least this many times the lossy one is a photograph. The fastest method suffices
/// to find out.
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

/// The lowest `bytes` bytes.
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

int continueUnlessCancelled(int, const WebPPicture *picture)
{
    return !static_cast<const std::atomic<bool> *>(picture->user_data)->load();
}

/// The chunks of a still image; empty if encoding is cancelled or fails.
QByteArray compressed(const WebPConfig &config, QSize size, std::vector<QRgb> pixels,
                      const std::atomic<bool> &cancelled)
{
    WebPPicture picture;
    if (cancelled || !WebPPictureInit(&picture))
        return {};
    picture.use_argb = 1;
    picture.width = size.width();
    picture.height = size.height();
    picture.argb = pixels.data(); // not owned by the picture
    picture.argb_stride = picture.width;
    picture.progress_hook = continueUnlessCancelled;
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
    : m_quality(std::clamp(quality, 0, kLosslessQuality))
    , m_maxPaletteError(kPaletteErrorPerLoss * (kLosslessQuality - m_quality) * (kLosslessQuality - m_quality))
    , m_maxFileBytes(maxFileBytes)
{
}

AnimationFormat::Limits WebpFormat::limits() const
{
    return {WEBP_MAX_DIMENSION, 2, 1000, 11, 0xffffff};
}

EncodedFrame WebpFormat::encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const
{
    const auto losslessData = [&](const FrameDelta &of) {
        return lossless(of, pixelsInFewColors(of).value_or(of.pixelsWithTransparency()), kLosslessMethod, cancelled);
    };
    const auto encodeLossless = [&] { return EncodedFrame{delta.rect, true, losslessData(delta)}; };
    const auto encodeLossy = [&] { return EncodedFrame{delta.rect, false, lossy(delta, cancelled)}; };
    if (m_quality == kLosslessQuality)
        return encodeLossless();
    const FrameDelta sample = delta.sample();
    if (sample.pixels.size() < delta.pixels.size()) { // trying a sample is cheaper than encoding the frame both ways
        const int lossySize = lossy(sample, cancelled).size();
        if (isPhotograph(sample, lossySize, cancelled))
            return encodeLossy();
        const double worthwhileSize = kWorthwhileLossyRatio * losslessData(sample).size();
        if (lossySize >= worthwhileSize)
            return encodeLossless();
        if (kMaxSampleBias * lossySize < worthwhileSize)
            return encodeLossy();
    }
    const EncodedFrame withoutLoss = encodeLossless();
    const EncodedFrame withLoss = encodeLossy();
    return withLoss.data.size() < kWorthwhileLossyRatio * withoutLoss.data.size() ? withLoss : withoutLoss;
}

/// Photographs are slow to encode losslessly, so this is checked first.
bool WebpFormat::isPhotograph(const FrameDelta &delta, int lossySize, const std::atomic<bool> &cancelled) const
{
    return lossless(delta, delta.opaquePixels(), kTrialMethod, cancelled).size() > kPhotographRatio * lossySize &&
           !pixelsInFewColors(delta);
}

/// The pixels in reduced colors and with transparency; no value if that is not close enough.
std::optional<std::vector<QRgb>> WebpFormat::pixelsInFewColors(const FrameDelta &delta) const
{
    if (m_quality == kLosslessQuality)
        return std::nullopt;
    const ColorHistogram histogram({delta.rect, delta.opaquePixels()});
    if (histogram.bins().size() <= kLargestPalette) // no reduction needed
        return delta.pixelsWithTransparency();
    ColorPalette palette;
    PaletteMatch match;
    for (std::size_t colors = kLargestPalette; colors >= kSmallestPalette; colors /= 2) {
        ColorPalette smaller = ColorPalette::bestFor(histogram, int(colors));
        PaletteMatch smallerMatch = smaller.match(histogram);
        if (smallerMatch.meanError > m_maxPaletteError)
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
    // Uniform quality, instead of less where the library expects it not to be noticed.
    config.sns_strength = 0;
    config.segments = 1;
    return compressed(config, delta.rect.size(), delta.opaquePixels(), cancelled);
}

bool WebpFormat::writeHeader(OutputFile &file, QSize size, int plays)
{
    QByteArray canvas(4, '\0'); // flags, written by writeTrailer()
    canvas += littleEndian(quint32(size.width() - 1), 3) + littleEndian(quint32(size.height() - 1), 3);
    const QByteArray background(4, '\0');
    return file.write("RIFF" + littleEndian(0, 4) + "WEBP" + chunk("VP8X", canvas) +
                      chunk("ANIM", background + littleEndian(quint32(plays), 2)));
}

bool WebpFormat::writeFrame(OutputFile &file, const EncodedFrame &frame, int ticks)
{
    if (file.size() + kChunkHeaderBytes + kFrameHeaderBytes + frame.data.size() > m_maxFileBytes)
        return file.fail(QStringLiteral("A WebP file cannot be larger than 4 GiB"));
    const int values[]{frame.rect.x() / 2, frame.rect.y() / 2, frame.rect.width() - 1, frame.rect.height() - 1, ticks};
    QByteArray bytes;
    for (const int value : values)
        bytes += littleEndian(quint32(value), 3);
    bytes += frame.hasTransparentPixels ? '\0' : kDoNotBlendFlag;
    m_hasAlpha = m_hasAlpha || frame.hasTransparentPixels;
    return file.write(chunk("ANMF", bytes + frame.data));
}

bool WebpFormat::writeTrailer(OutputFile &file)
{
    const char flags = char(kAnimationFlag | (m_hasAlpha ? kAlphaFlag : 0));
    return file.overwrite(kSizeOffset, littleEndian(quint32(file.size() - kChunkHeaderBytes), 4)) &&
           file.overwrite(kFlagsOffset, QByteArray(1, flags));
}

} // namespace av
