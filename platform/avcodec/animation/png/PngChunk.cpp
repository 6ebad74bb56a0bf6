#include "avcodec/animation/png/PngChunk.h"

#include <QtEndian>

#include <libdeflate.h>

namespace av
{

namespace
{

template <typename Integer>
QByteArray bytesOf(Integer value)
{
    QByteArray bytes(sizeof value, Qt::Uninitialized);
    qToBigEndian(value, bytes.data());
    return bytes;
}

} // namespace

QByteArray png::bigEndian(quint16 value)
{
    return bytesOf(value);
}

QByteArray png::bigEndian(quint32 value)
{
    return bytesOf(value);
}

QByteArray png::chunk(const char *type, const QByteArray &data)
{
    QByteArray bytes = bigEndian(quint32(data.size())) + type + data;
    const quint32 crc = libdeflate_crc32(0, bytes.constData() + 4, std::size_t(bytes.size() - 4));
    return bytes += bigEndian(crc);
}

QByteArray png::header(QSize size)
{
    constexpr char kBitDepth = 8;
    constexpr char kTrueColor = 2;
    const QByteArray sides = bigEndian(quint32(size.width())) + bigEndian(quint32(size.height()));
    return chunk("IHDR", sides + kBitDepth + kTrueColor + QByteArray(3, '\0'));
}

QByteArray png::transparency(QRgb color)
{
    QByteArray channels;
    for (const int value : {qRed(color), qGreen(color), qBlue(color)})
        channels += bigEndian(quint16(value));
    return chunk("tRNS", channels);
}

} // namespace av
