#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

/// Test videos for decoders, written by the ffmpeg program: 160x96, each frame shows its number in black and white
/// blocks that survive any reasonable compression.
namespace NumberedVideo
{

constexpr int kWidth = 160;
constexpr int kHeight = 96;

QImage image(int number);

/// The number shown in an image; -1 if there is none.
int numberIn(const QImage &image);

/// Encodes frames 0 to count - 1 at 30 fps with the given output options of the program. True on success.
bool write(const QString &path, int count, const QStringList &options);

/// Options: as a recording is encoded, and in fragments.
inline const QStringList kRecorded{"-c:v",        "libx264rgb", "-preset", "ultrafast", "-tune",
                                   "zerolatency", "-crf",       "16",      "-g",        "10"};
inline const QStringList kFragmented{"-movflags", "frag_every_frame+empty_moov+default_base_moof"};

/// Runs the ffmpeg program. True if it succeeded.
bool runFfmpeg(const QStringList &arguments, const QByteArray &input = {});

} // namespace NumberedVideo
