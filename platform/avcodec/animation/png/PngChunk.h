#pragma once

#include <QByteArray>
#include <QColor>
#include <QSize>

/// Building blocks of PNG files.
namespace av::png
{

constexpr char kSignature[] = "\x89PNG\r\n\x1a\n";
constexpr int kSignatureBytes = 8;
constexpr int kEmptyChunkBytes = 12;

QByteArray bigEndian(quint16 value);
QByteArray bigEndian(quint32 value);

QByteArray chunk(const char *type, const QByteArray &data);

/// IHDR: true color, 8 bits per channel.
QByteArray header(QSize size);

/// tRNS: the given color is transparent.
QByteArray transparency(QRgb color);

} // namespace av::png
