#include "avcodec/GifFormat.h"

#include <QtEndian>

#include <algorithm>

namespace
{

/// One index of every palette is kept for transparency.
constexpr int MaxColours = 255;

/// What a quality of 0 allows, as squared distance of a pixel's colour: the mean error of a palette that saves bytes,
/// and the error of a single pixel.
constexpr double MaxPaletteError = 100;
constexpr double MaxTolerance = 400;

/// Where the palette shows colours with some error anyway, a pixel may have this many times that error: for each step
/// of quality below 100.
constexpr double ToleranceGainPerLoss = 0.3;

/// Histograms of more bins need the largest palette.
constexpr std::size_t ManyBins = 1024;
constexpr int SmallestPalette = 15;

/// A local palette of up to this many colours is small enough to be tried even where the global one will do: with
/// fewer colours the codes are shorter as well.
constexpr std::size_t SmallPalette = 127;

/// A local palette costs up to 768 bytes; it has to be that much better than the global one.
constexpr double WorthwhileGain = 0.9;

constexpr int DelayOffset = 4; // in the bytes of a frame

QByteArray littleEndian16(int value)
{
    QByteArray bytes(2, Qt::Uninitialized);
    qToLittleEndian(quint16(value), bytes.data());
    return bytes;
}

/// Bits of an index into a colour table with an entry for transparency.
int tableBits(std::size_t colours)
{
    int bits = 1;
    while (std::size_t(1) << bits < colours + 1)
        ++bits;
    return bits;
}

QByteArray colourTable(const std::vector<QRgb> &colours)
{
    QByteArray table;
    for (const QRgb colour : colours)
        table.append(char(qRed(colour))).append(char(qGreen(colour))).append(char(qBlue(colour)));
    return table.leftJustified(3 << tableBits(colours.size()), '\0');
}

} // namespace

GifFormat::GifFormat(int quality)
    : m_loss(100 - std::clamp(quality, 0, 100))
    , m_paletteError(MaxPaletteError * m_loss * m_loss / 1e4)
{
}

AnimationFormat::Limits GifFormat::limits() const
{
    return {65535, 1, 100, 2, 65535};
}

void GifFormat::prepare(const PictureDelta &first)
{
    m_palette = ColourPalette::bestFor(ColourHistogram(first), MaxColours);
}

EncodedFrame GifFormat::encode(const PictureDelta &delta, const std::atomic<bool> &cancelled) const
{
    const ColourHistogram histogram(delta);
    const PaletteMatch global = m_palette.match(histogram);
    const bool globalWillDo = global.meanError <= m_paletteError;
    const bool fewColours = histogram.isExact() && histogram.bins().size() <= SmallPalette;
    EncodedFrame encoded{delta.rect, true, {}};
    if (cancelled)
        return encoded;

    if (globalWillDo)
        encoded.data = frame(delta, histogram, m_palette, global, false);
    if (globalWillDo && !fewColours)
        return encoded;
    const ColourPalette own = smallestPalette(histogram);
    const PaletteMatch local = own.match(histogram);
    if (cancelled)
        return encoded;
    if (!globalWillDo && local.meanError > WorthwhileGain * global.meanError) {
        encoded.data = frame(delta, histogram, m_palette, global, false);
    } else {
        const QByteArray data = frame(delta, histogram, own, local, true);
        if (!globalWillDo || data.size() < encoded.data.size())
            encoded.data = data;
    }
    return encoded;
}

/// The smallest that is good enough, as its size counts for small frames.
ColourPalette GifFormat::smallestPalette(const ColourHistogram &histogram) const
{
    const int first = histogram.bins().size() > ManyBins ? MaxColours : SmallestPalette;
    for (int colours = first; colours < MaxColours; colours = 2 * colours + 1) {
        ColourPalette palette = ColourPalette::bestFor(histogram, colours);
        if (palette.match(histogram).meanError <= m_paletteError)
            return palette;
    }
    return ColourPalette::bestFor(histogram, MaxColours);
}

QByteArray GifFormat::frame(const PictureDelta &delta, const ColourHistogram &histogram, const ColourPalette &palette,
                            const PaletteMatch &match, bool local) const
{
    IndexedPicture picture{delta.pixels, {}, palette.colours(), int(palette.colours().size()), 0};
    picture.palette.push_back(0);
    picture.tolerance = int(MaxTolerance * m_loss * m_loss / 1e4 + ToleranceGainPerLoss * m_loss * match.meanError);
    picture.indices.reserve(delta.pixels.size());
    QRgb latest = 0;
    int index = picture.transparent;
    bool known = false;
    for (const QRgb pixel : delta.pixels) {
        const QRgb colour = PictureDelta::colour(pixel);
        if (!known || colour != latest) { // pixels come in runs
            const int bin = histogram.binOf(colour);
            index = bin < 0 ? picture.transparent : match.indexOfBin[std::size_t(bin)];
            latest = colour;
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
    bytes += char(local ? 0x80 | (tableBits(palette.colours().size()) - 1) : 0);
    if (local)
        bytes += colourTable(palette.colours());
    return bytes + gifImageData(picture);
}

bool GifFormat::writeHeader(OutputFile &file, QSize size, int plays)
{
    QByteArray header = QByteArrayLiteral("GIF89a");
    header += littleEndian16(size.width()) + littleEndian16(size.height());
    header += char(0xf0 | (tableBits(m_palette.colours().size()) - 1)); // global table of 8-bit colours
    header += QByteArray(2, '\0');                                      // background, aspect
    header += colourTable(m_palette.colours());
    if (plays != 1) // the extension counts repetitions
        header += QByteArrayLiteral("\x21\xff\x0bNETSCAPE2.0\x03\x01") + littleEndian16(std::max(0, plays - 1)) + '\0';
    return file.write(header);
}

bool GifFormat::writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks)
{
    QByteArray bytes = picture.data;
    return file.write(bytes.replace(DelayOffset, 2, littleEndian16(ticks)));
}

bool GifFormat::writeTrailer(OutputFile &file)
{
    return file.write(QByteArrayLiteral("\x3b"));
}
