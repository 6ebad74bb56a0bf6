#include "avcodec/ApngFormat.h"

#include "avcodec/PngFilter.h"

#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>
#include <memory>
#include <new>

namespace
{

/// Good for choosing between two ways, at a fraction of the time.
constexpr int TrialLevel = 1;

/// A picture of which more than this is left after compression counts as a photograph.
constexpr double PhotographRatio = 1.0 / 3;

/// Higher ones take many times as long for less than a hundredth of the bytes. Of small pictures there are many, and
/// they take little time anyway.
constexpr int CompressionLevel = 7;
constexpr int SmallPictureLevel = 9;
constexpr int SmallPicture = 1 << 18; // bytes

/// Qualities that each bit of a channel is worth.
constexpr int QualityPerBit = 25;

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

} // namespace

ApngFormat::ApngFormat(int fps, int quality)
    : m_fps(fps)
    , m_droppedBits(3 - std::clamp(quality, 0, 99) / QualityPerBit)
{
}

AnimationFormat::Limits ApngFormat::limits() const
{
    return {32767, 1, m_fps, m_fps / 100 + 1, 65535};
}

void ApngFormat::prepare(const PictureDelta &first)
{
    m_pixelBytes = 3;
    const QByteArray rows = filteredRows(first.sample(), Way::FilteredOpaque);
    const bool photograph = deflated(rows, TrialLevel).size() > PhotographRatio * rows.size();
    m_pixelBytes = photograph ? 3 : 4;
}

EncodedFrame ApngFormat::encode(const PictureDelta &delta, const std::atomic<bool> &cancelled) const
{
    const PictureDelta sample = delta.sample();
    const auto trialSize = [&](Way way) { return deflated(filteredRows(sample, way), TrialLevel).size(); };
    const Way way =
        trialSize(Way::FilteredOpaque) < trialSize(Way::PlainWithGaps) ? Way::FilteredOpaque : Way::PlainWithGaps;
    if (cancelled)
        return {};
    const QByteArray rows = filteredRows(delta, way);
    const int level = rows.size() <= SmallPicture ? SmallPictureLevel : CompressionLevel;
    return {delta.rect, way == Way::PlainWithGaps, deflated(rows, level)};
}

QByteArray ApngFormat::filteredRows(const PictureDelta &delta, Way way) const
{
    const bool mayHaveGaps = m_pixelBytes == 4 && way == Way::PlainWithGaps;
    QByteArray bytes(int(delta.pixels.size()) * m_pixelBytes, Qt::Uninitialized);
    char *to = bytes.data();
    for (const QRgb pixel : mayHaveGaps ? delta.pixelsWithGaps() : delta.opaquePixels()) {
        for (const int value : {qRed(pixel), qGreen(pixel), qBlue(pixel)}) // rounded so that white stays white
            *to++ = char(value >> m_droppedBits << m_droppedBits | value >> (8 - m_droppedBits));
        if (m_pixelBytes == 4)
            *to++ = char(qAlpha(pixel));
    }
    return png::filteredRows(bytes, delta.rect.width() * m_pixelBytes, m_pixelBytes,
                             way == Way::FilteredOpaque ? png::Filtering::Adaptive : png::Filtering::None);
}

bool ApngFormat::writeHeader(OutputFile &file, QSize size, int plays)
{
    m_plays = plays;
    const char colourType = m_pixelBytes == 4 ? 6 : 2;
    QByteArray header = bigEndian(quint32(size.width())) + bigEndian(quint32(size.height()));
    header.append(8).append(colourType).append(3, '\0');
    return file.write(QByteArrayLiteral("\x89PNG\r\n\x1a\n") + chunk("IHDR", header) + animationControl());
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
    control += bigEndian(quint16(ticks)) + bigEndian(quint16(m_fps));
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
