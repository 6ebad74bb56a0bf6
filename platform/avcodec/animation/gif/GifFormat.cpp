#include "avcodec/animation/gif/GifFormat.h"

#include <QtEndian>

#include <algorithm>
#include <limits>
#include <utility>

namespace av
{

namespace
{

/// One index of every palette is kept for transparency.
constexpr int kMaxColors = 255;

/// The squared distance by which another color may be shown at a quality of 0.
constexpr double kMaxTolerance = 800;

/// Squared error (all pixels together) that a byte is worth, for the square of each step of quality below 100.
constexpr double kErrorPerByte = 0.2;

/// Where the palette shows colors with some error anyway, a pixel may have this many times that error more: for each
/// step of quality below 100.
constexpr double kToleranceGainPerLoss = 0.2;

/// The same for what a string of pixels may have in error to save a bit.
constexpr double kErrorPerBitPerLoss = 0.5;

/// Small changes stay in sight for longer than large ones, and so do their errors: there, bytes are worth less.
constexpr double kSmallFrameByteWeight = 0.7;

/// Frames in which so few pixels change are encoded with palettes of all sizes, as those are a good part of their
/// bytes. Others take the largest palette, their own or the global one.
constexpr double kFewChanges = 1 << 13;
constexpr std::size_t kSmallFrame = 1 << 18;
constexpr std::size_t kSmallestPalette = 3;

/// Unchanged pixels in a row. Shorter stretches may look like their surroundings.
constexpr std::ptrdiff_t kLongRun = 24;

constexpr int kDelayOffset = 4; // in the bytes of a frame

QByteArray littleEndian16(int value)
{
    QByteArray bytes(2, Qt::Uninitialized);
    qToLittleEndian(quint16(value), bytes.data());
    return bytes;
}

/// Bits of an index into a color table with an entry for transparency.
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

/// Makes all of a long unchanged stretch transparent, rather than what goes best with the changes.
void makeLongRunsTransparent(IndexedFrame &picture)
{
    const auto first = picture.pixels.begin();
    const auto last = picture.pixels.end();
    for (auto pixel = first; pixel != last;) {
        const auto gap = std::find_if_not(pixel, last, FrameDelta::isChanged);
        pixel = std::find_if(gap, last, FrameDelta::isChanged);
        if (pixel - gap >= kLongRun)
            std::fill_n(picture.indices.begin() + (gap - first), pixel - gap, quint8(picture.transparent));
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
    // What changes later are edges rather than areas.
    m_palette = ColorPalette::bestFor(ColorHistogram(first), kMaxColors).ordered(ColorHistogram(first.edges()));
}

EncodedFrame GifFormat::encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const
{
    const ColorHistogram histogram(delta);
    const bool isSmall = histogram.pixelCount() <= kFewChanges && delta.pixels.size() <= kSmallFrame;
    return {delta.rect, true,
            isSmall ? smallFrame(delta, histogram, cancelled) : largeFrame(delta, histogram, cancelled)};
}

/// With the palette that is worth its bytes; all of them are tried.
QByteArray GifFormat::smallFrame(const FrameDelta &delta, const ColorHistogram &histogram,
                                 const std::atomic<bool> &cancelled) const
{
    QByteArray best;
    std::pair least(std::numeric_limits<double>::max(), 0); // and bytes
    const auto attempt = [&](const ColorPalette &palette, bool local) {
        const PaletteMatch match = palette.match(histogram);
        const double error = match.meanError * histogram.pixelCount();
        if (error >= least.first)
            return;
        const QByteArray data = frame(delta, histogram, palette, match, local, cancelled);
        const std::pair cost(error + kSmallFrameByteWeight * m_errorPerByte * data.size(), data.size());
        if (cost < least) {
            least = cost;
            best = data;
        }
    };
    for (std::size_t colors = kMaxColors; colors >= kSmallestPalette && !cancelled; colors /= 2)
        attempt(m_palette.beginning(colors), false); // in smaller codes
    const auto most = int(std::min<std::size_t>(histogram.bins().size(), kMaxColors));
    for (int colors = int(kSmallestPalette); !cancelled; colors = 2 * colors + 1) {
        attempt(ColorPalette::bestFor(histogram, colors), true);
        if (colors >= most)
            break;
    }
    return best;
}

/// With a palette of its own if that is truer than the global one by what its bytes are worth.
QByteArray GifFormat::largeFrame(const FrameDelta &delta, const ColorHistogram &histogram,
                                 const std::atomic<bool> &cancelled) const
{
    const PaletteMatch global = m_palette.match(histogram);
    const double worthwhileError =
        global.meanError - m_errorPerByte * 3 * (kMaxColors + 1) / std::max(histogram.pixelCount(), 1.0);
    if (worthwhileError > 0) {
        const ColorPalette own = ColorPalette::bestFor(histogram, kMaxColors);
        const PaletteMatch match = own.match(histogram);
        if (match.meanError < worthwhileError)
            return frame(delta, histogram, own, match, true, cancelled);
    }
    return frame(delta, histogram, m_palette, global, false, cancelled);
}

QByteArray GifFormat::frame(const FrameDelta &delta, const ColorHistogram &histogram, const ColorPalette &palette,
                            const PaletteMatch &match, bool local, const std::atomic<bool> &cancelled) const
{
    IndexedFrame picture{delta.pixels, {}, palette.colors(), int(palette.colors().size()), 0};
    picture.palette.push_back(0);
    picture.tolerance = int(kMaxTolerance * m_loss * m_loss / 1e4 + kToleranceGainPerLoss * m_loss * match.meanError);
    picture.errorPerBit = m_errorPerByte / 4 + kErrorPerBitPerLoss * m_loss * match.meanError;
    picture.indices.reserve(delta.pixels.size());
    QRgb latest = 0;
    int index = picture.transparent;
    bool known = false;
    for (const QRgb pixel : delta.pixels) {
        const QRgb color = FrameDelta::color(pixel);
        if (!known || color != latest) { // pixels come in runs
            const int bin = histogram.binOf(color);
            index = bin < 0 ? picture.transparent : match.indexOfBin[std::size_t(bin)];
            latest = color;
            known = true;
        }
        picture.indices.push_back(quint8(index));
    }

    QByteArray bytes = QByteArrayLiteral("\x21\xf9\x04\x05"); // keep the picture for the next one; has transparency
    bytes += littleEndian16(0);                               // delay
    bytes += char(picture.transparent);
    bytes += '\0';
    bytes += '\x2c';
    for (const int value : {delta.rect.x(), delta.rect.y(), delta.rect.width(), delta.rect.height()})
        bytes += littleEndian16(value);
    bytes += char(local ? 0x80 | (tableBits(palette.colors().size()) - 1) : 0);
    if (local)
        bytes += colorTable(palette.colors());
    const QByteArray data = gifImageData(picture, cancelled);
    if (histogram.pixelCount() > kFewChanges)
        return bytes + data;
    makeLongRunsTransparent(picture);
    const QByteArray gapped = gifImageData(picture, cancelled);
    return bytes + (gapped.size() < data.size() ? gapped : data);
}

bool GifFormat::writeHeader(OutputFile &file, QSize size, int plays)
{
    QByteArray header = QByteArrayLiteral("GIF89a");
    header += littleEndian16(size.width()) + littleEndian16(size.height());
    header += char(0xf0 | (tableBits(m_palette.colors().size()) - 1)); // global table of 8-bit colors
    header += QByteArray(2, '\0');                                     // background, aspect
    header += colorTable(m_palette.colors());
    if (plays != 1) // the extension counts repetitions
        header += QByteArrayLiteral("\x21\xff\x0bNETSCAPE2.0\x03\x01") + littleEndian16(std::max(0, plays - 1)) + '\0';
    return file.write(header);
}

bool GifFormat::writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks)
{
    QByteArray bytes = picture.data;
    return file.write(bytes.replace(kDelayOffset, 2, littleEndian16(ticks)));
}

bool GifFormat::writeTrailer(OutputFile &file)
{
    return file.write(QByteArrayLiteral("\x3b"));
}

} // namespace av
