#pragma once

#include <QByteArray>
#include <QColor>
#include <QSize>

/// The parts that PNG files are made of.
namespace av::png
{

constexpr char kSignature[] = "\x89PNG\r\n\x1a\n";

/// Of a file and of a chunk without data.
constexpr int kSignatureBytes = 8;
constexpr int kEmptyChunkBytes = 12;

QByteArray bigEndian(quint16 value);
QByteArray bigEndian(quint32 value);

QByteArray chunk(const char *type, const QByteArray &data);

/// IHDR: true color, 8 bits a channel.
QByteArray header(QSize size);

/// tRNS: the color is transparent.
QByteArray transparency(QRgb color);

} // namespace av::png
