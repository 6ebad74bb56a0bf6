#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

/// Videos for the tests of decoders, written by the ffmpeg program: 160x96, each picture carries its number in blocks
/// of black and white that survive any usable compression.
namespace NumberedVideo
{

constexpr int kWidth = 160;
constexpr int kHeight = 96;

QImage picture(int number);

/// The number in a picture; -1 when there is none.
int numberIn(const QImage &picture);

/// Encodes pictures 0 to count - 1 at 30 a second with the program's options for the output. True on success.
bool write(const QString &path, int count, const QStringList &options);

/// Runs the ffmpeg program. True when it succeeded.
bool runFfmpeg(const QStringList &arguments, const QByteArray &input = {});

} // namespace NumberedVideo
