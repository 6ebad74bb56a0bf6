#include "avcodec/ApngFormat.h"

#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

namespace
{

constexpr int PixelBytes = 3;

/// libdeflate's levels. The first is good for choosing between two filterings, at a fraction of the time. Filtered rows
/// hardly gain from more than a middling one, plain ones do.
constexpr int TrialLevel = 1;
constexpr int FilteredLevel = 7;
constexpr int PlainLevel = 9;
constexpr int PatientLevel = 11;

/// Qualities below this ask for small files.
constexpr int Balanced = 75;

constexpr qint64 AnimationControlOffset = 33; // behind signature and header

QByteArray deflated(const QByteArray &bytes, int level)
{
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), libdeflate_free_compressor);
    if (!compressor)
        throw std::bad_alloc();
    const std::size_t bound = libdeflate_zlib_compress_bound(compressor.get(), std::size_t(bytes.size()));
    QByteArray out(int(bound), Qt::Uninitialized);
    out.resize(int(libdeflate_zlib_compress(compressor.get(), bytes.constData(), std::size_t(bytes.size()), out.data(),
                                            std::size_t(out.size()))));
    return out;
}

template <typename Integer>
QByteArray bigEndian(Integer value)
{
    QByteArray bytes(sizeof value, Qt::Uninitialized);
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray chunk(const char *type, const QByteArray &data)
{
    QByteArray bytes = bigEndian(quint32(data.size())) + type + data;
    const quint32 crc = libdeflate_crc32(0, bytes.constData() + 4, std::size_t(bytes.size() - 4));
    return bytes += bigEndian(crc);
}

/// Browsers cut durations down to whole milliseconds: 30 a second that last 1/30 s each would play faster than the rest
/// of the world.
int unitFor(int fps)
{
    constexpr int exact = 1000;
    return fps > 0 && exact % fps == 0 ? fps : exact;
}

} // namespace

ApngFormat::ApngFormat(int fps, int quality)
    : m_ticksPerSecond(unitFor(fps))
    , m_isPatient(quality < Balanced)
{
}

AnimationFormat::Limits ApngFormat::limits() const
{
    return {32767, 1, m_ticksPerSecond, m_ticksPerSecond / 100 + 1, 65535};
}

/// A garish green that hardly anything on a screen has, or its next neighbour that the picture does not have.
void ApngFormat::prepare(const PictureDelta &first)
{
    std::vector<bool> isUsed(std::size_t(1) << 24);
    for (const QRgb pixel : first.pixels)
        isUsed[PictureDelta::colour(pixel)] = true;
    m_gapColour = 0x02fd01;
    while (isUsed[m_gapColour] && m_gapColour < 0x03ffff)
        m_gapColour += 2;
}

EncodedFrame ApngFormat::encode(const PictureDelta &delta, const std::atomic<bool> &cancelled) const
{
    using png::Filtering;
    struct Way {
        bool hasGaps;
        Filtering filtering;
    };
    const auto pixelsOf = [](const PictureDelta &of, bool hasGaps) {
        return hasGaps ? of.pixelsWithGaps() : of.opaquePixels();
    };
    const PictureDelta sample = delta.sample();
    Way best{false, Filtering::None};
    int least = std::numeric_limits<int>::max();
    for (const bool hasGaps : {false, true}) {
        const std::vector<QRgb> pixels = pixelsOf(sample, hasGaps);
        if (hasGaps && std::all_of(pixels.begin(), pixels.end(), PictureDelta::isChanged))
            break;
        for (const Filtering filtering : {Filtering::None, Filtering::Adaptive}) {
            if (cancelled)
                return {};
            const int size = deflated(rows(pixels, sample.rect.width(), filtering), TrialLevel).size();
            if (size < least) {
                least = size;
                best = {hasGaps, filtering};
            }
        }
    }
    const QByteArray filtered = rows(pixelsOf(delta, best.hasGaps), delta.rect.width(), best.filtering);
    if (cancelled)
        return {};
    QByteArray data = deflated(filtered, best.filtering == Filtering::None ? PlainLevel : FilteredLevel);
    if (m_isPatient && !cancelled) { // which does not always pay
        const QByteArray smaller = deflated(filtered, PatientLevel);
        if (smaller.size() < data.size())
            data = smaller;
    }
    return {delta.rect, best.hasGaps, data};
}

/// Transparent pixels get the colour that stands for them; those that have it get its neighbour.
QByteArray ApngFormat::rows(const std::vector<QRgb> &pixels, int width, png::Filtering filtering) const
{
    QByteArray bytes(int(pixels.size()) * PixelBytes, Qt::Uninitialized);
    char *to = bytes.data();
    for (const QRgb pixel : pixels) {
        QRgb colour = PictureDelta::isChanged(pixel) ? PictureDelta::colour(pixel) : m_gapColour;
        if (pixel == (m_gapColour | PictureDelta::Changed))
            colour ^= 1;
        for (const int value : {qRed(colour), qGreen(colour), qBlue(colour)})
            *to++ = char(value);
    }
    return png::filteredRows(bytes, width * PixelBytes, PixelBytes, filtering);
}

bool ApngFormat::writeHeader(OutputFile &file, QSize size, int plays)
{
    m_plays = plays;
    constexpr char trueColour = 2;
    QByteArray header = bigEndian(quint32(size.width())) + bigEndian(quint32(size.height()));
    header.append(8).append(trueColour).append(3, '\0');
    QByteArray transparent;
    for (const int value : {qRed(m_gapColour), qGreen(m_gapColour), qBlue(m_gapColour)})
        transparent += bigEndian(quint16(value));
    return file.write(QByteArrayLiteral("\x89PNG\r\n\x1a\n") + chunk("IHDR", header) + animationControl() +
                      chunk("tRNS", transparent));
}

/// The number of frames is known at the end only.
QByteArray ApngFormat::animationControl() const
{
    return chunk("acTL", bigEndian(m_frames) + bigEndian(quint32(m_plays)));
}

bool ApngFormat::writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks)
{
    constexpr char keepPicture = 0;
    QByteArray control = bigEndian(m_sequence++);
    for (const int value : {picture.rect.width(), picture.rect.height(), picture.rect.x(), picture.rect.y()})
        control += bigEndian(quint32(value));
    control += bigEndian(quint16(ticks)) + bigEndian(quint16(m_ticksPerSecond));
    control.append(keepPicture).append(char(picture.keepsPixels));
    const QByteArray data =
        m_frames == 0 ? chunk("IDAT", picture.data) : chunk("fdAT", bigEndian(m_sequence++) + picture.data);
    if (!file.write(chunk("fcTL", control)) || !file.write(data))
        return false;
    ++m_frames;
    return true;
}

bool ApngFormat::writeTrailer(OutputFile &file)
{
    return file.write(chunk("IEND", {})) && file.overwrite(AnimationControlOffset, animationControl());
}
