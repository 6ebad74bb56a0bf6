#include "avcodec/animation/gif/GifFormat.h"

#include <QtEndian>

#include <algorithm>
#include <limits>
#include <utility>

namespace av
{

namespace
{

/// One index of each palette is reserved for transparency.
constexpr int kMaxColors = 255;

/// Largest squared distance of a replacement color at quality 0.
constexpr double kMaxTolerance = 800;

/// Squared error, summed over all pixels, that is accepted to save one byte; multiplied by (100 - quality)².
constexpr double kErrorPerByte = 0.2;

/// Where the palette is inexact, the tolerance grows by this factor of its mean error; multiplied by 100 - quality.
constexpr double kToleranceGainPerLoss = 0.2;

/// The same for the error that is accepted to save one bit.
constexpr double kErrorPerBitPerLoss = 0.5;

/// Weight of bytes in small frames: small changes stay visible longer than large ones, so their errors matter more.
constexpr double kSmallFrameByteWeight = 0.7;

/// A frame with at most this many changed pixels, and this many pixels in total, is tried with palettes of all sizes,
/// as the palette makes up much of its bytes. Other frames use the largest palette, a local one or the global one.
constexpr double kFewChanges = 1 << 13;
constexpr std::size_t kSmallFrameSize = 1 << 18;
constexpr std::size_t kSmallestPalette = 3;

/// Minimum length of an unchanged run that is made transparent. Shorter ones better continue their surroundings.
constexpr std::ptrdiff_t kLongRun = 24;

constexpr int kDelayOffset = 4; // of the duration in the data of a frame

QByteArray littleEndian16(int value)
{
    QByteArray bytes(2, Qt::Uninitialized);
    qToLittleEndian(quint16(value), bytes.data());
    return bytes;
}

/// Bits of an index into a color table that also has an entry for transparency.
int tableBits(std::size_t colors)
{
    int bits = 1;
    while (std::size_t(1) << bits < colors + 1)
        ++bits;
    return bits;
}

QByteArray colorTable(const std::vector<QRgb> &colors)
{
    QByteArray table;
    for (const QRgb color : colors)
        table.append(char(qRed(color))).append(char(qGreen(color))).append(char(qBlue(color)));
    return table.leftJustified(3 << tableBits(colors.size()), '\0');
}

/// Makes long unchanged runs transparent throughout.
void makeLongRunsTransparent(IndexedFrame &frame)
{
    const auto first = frame.pixels.begin();
    const auto last = frame.pixels.end();
    for (auto pixel = first; pixel != last;) {
        const auto run = std::find_if_not(pixel, last, FrameDelta::isChanged);
        pixel = std::find_if(run, last, FrameDelta::isChanged);
        if (pixel - run >= kLongRun)
            std::fill_n(frame.indices.begin() + (run - first), pixel - run, quint8(frame.transparent));
    }
}

} // namespace

GifFormat::GifFormat(int quality)
    : m_loss(100 - std::clamp(quality, 0, 100))
    , m_errorPerByte(kErrorPerByte * m_loss * m_loss)
{
}

AnimationFormat::Limits GifFormat::limits() const
{
    return {65535, 1, 100, 2, 65535};
}

void GifFormat::analyzeFirstFrame(const FrameDelta &first)
{
    // Later changes are mostly edges rather than areas.
    m_palette = ColorPalette::bestFor(ColorHistogram(first), kMaxColors).ordered(ColorHistogram(first.edges()));
}

EncodedFrame GifFormat::encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const
{
    const ColorHistogram histogram(delta);
    const bool isSmall = histogram.pixelCount() <= kFewChanges && delta.pixels.size() <= kSmallFrameSize;
    return {delta.rect, true,
            isSmall ? encodeSmall(delta, histogram, cancelled) : encodeLarge(delta, histogram, cancelled)};
}

/// Tries local and global palettes of all sizes and takes the one with the best trade-off between error and bytes.
QByteArray GifFormat::encodeSmall(const FrameDelta &delta, const ColorHistogram &histogram,
                                  const std::atomic<bool> &cancelled) const
{
    QByteArray best;
    std::pair minCost(std::numeric_limits<double>::max(), 0); // the second compares the bytes of equal costs
    const auto attempt = [&](const ColorPalette &palette, bool isLocal) {
        const PaletteMatch match = palette.match(histogram);
        const double error = match.meanError * histogram.pixelCount();
        if (error >= minCost.first)
            return;
        const QByteArray data = encodeWith(palette, isLocal, match, delta, histogram, cancelled);
        const std::pair cost(error + kSmallFrameByteWeight * m_errorPerByte * data.size(), data.size());
        if (cost < minCost) {
            minCost = cost;
            best = data;
        }
    };
    for (std::size_t colors = kMaxColors; colors >= kSmallestPalette && !cancelled; colors /= 2)
        attempt(m_palette.prefix(colors), false); // fewer colors have shorter codes
    const auto most = int(std::min<std::size_t>(histogram.bins().size(), kMaxColors));
    for (int colors = int(kSmallestPalette); !cancelled; colors = 2 * colors + 1) {
        attempt(ColorPalette::bestFor(histogram, colors), true);
        if (colors >= most)
            break;
    }
    return best;
}

/// Uses a local palette if the error it saves, compared with the global one, is worth its bytes.
QByteArray GifFormat::encodeLarge(const FrameDelta &delta, const ColorHistogram &histogram,
                                  const std::atomic<bool> &cancelled) const
{
    const PaletteMatch global = m_palette.match(histogram);
    const double maxLocalError =
        global.meanError - m_errorPerByte * 3 * (kMaxColors + 1) / std::max(histogram.pixelCount(), 1.0);
    if (maxLocalError > 0) {
        const ColorPalette local = ColorPalette::bestFor(histogram, kMaxColors);
        const PaletteMatch match = local.match(histogram);
        if (match.meanError < maxLocalError)
            return encodeWith(local, true, match, delta, histogram, cancelled);
    }
    return encodeWith(m_palette, false, global, delta, histogram, cancelled);
}

QByteArray GifFormat::encodeWith(const ColorPalette &palette, bool isLocal, const PaletteMatch &match,
                                 const FrameDelta &delta, const ColorHistogram &histogram,
                                 const std::atomic<bool> &cancelled) const
{
    IndexedFrame frame{delta.pixels, {}, palette.colors(), int(palette.colors().size()), 0};
    frame.palette.push_back(0);
    frame.tolerance = int(kMaxTolerance * m_loss * m_loss / 1e4 + kToleranceGainPerLoss * m_loss * match.meanError);
    frame.errorPerBit = m_errorPerByte / 4 + kErrorPerBitPerLoss * m_loss * match.meanError;
    frame.indices.reserve(delta.pixels.size());
    QRgb latest = 0;
    int index = frame.transparent;
    bool known = false;
    for (const QRgb pixel : delta.pixels) {
        const QRgb color = FrameDelta::color(pixel);
        if (!known || color != latest) { // equal pixels mostly come in runs
            const int bin = histogram.binOf(color);
            index = bin < 0 ? frame.transparent : match.indexOfBin[std::size_t(bin)];
            latest = color;
            known = true;
        }
        frame.indices.push_back(quint8(index));
    }

    // Graphic control extension: the frame stays for the next one and has a transparent index.
    QByteArray bytes = QByteArrayLiteral("\x21\xf9\x04\x05");
    bytes += littleEndian16(0); // delay
    bytes += char(frame.transparent);
    bytes += '\0';
    bytes += '\x2c';
    for (const int value : {delta.rect.x(), delta.rect.y(), delta.rect.width(), delta.rect.height()})
        bytes += littleEndian16(value);
    bytes += char(isLocal ? 0x80 | (tableBits(palette.colors().size()) - 1) : 0);
    if (isLocal)
        bytes += colorTable(palette.colors());
    const QByteArray data = gifImageData(frame, cancelled);
    if (histogram.pixelCount() > kFewChanges)
        return bytes + data;
    makeLongRunsTransparent(frame);
    const QByteArray transparent = gifImageData(frame, cancelled);
    return bytes + (transparent.size() < data.size() ? transparent : data);
}

bool GifFormat::writeHeader(OutputFile &file, QSize size, int plays)
{
    QByteArray header = QByteArrayLiteral("GIF89a");
    header += littleEndian16(size.width()) + littleEndian16(size.height());
    header += char(0xf0 | (tableBits(m_palette.colors().size()) - 1)); // global table of 8-bit colors
    header += QByteArray(2, '\0');                                     // background, aspect
    header += colorTable(m_palette.colors());
    if (plays != 1) // the extension states the number of repetitions
        header += QByteArrayLiteral("\x21\xff\x0bNETSCAPE2.0\x03\x01") + littleEndian16(std::max(0, plays - 1)) + '\0';
    return file.write(header);
}

bool GifFormat::writeFrame(OutputFile &file, const EncodedFrame &frame, int ticks)
{
    QByteArray bytes = frame.data;
    return file.write(bytes.replace(kDelayOffset, 2, littleEndian16(ticks)));
}

bool GifFormat::writeTrailer(OutputFile &file)
{
    return file.write(QByteArrayLiteral("\x3b"));
}

} // namespace av
