#include "audio/processing/TrimmedAudio.h"

#include "avcodec/audio/MixAudioVideoTracks.h"
#include "avcodec/mp4/h264Encoder.h"
#include "logging/Log.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

namespace kel
{

namespace
{

/// Creates a video of one black pixel, because mixing requires a video. Returns its path, empty on failure.
QString createMinimalVideo(const QString &path)
{
    constexpr int fps = 1;
    constexpr int quality = 50;
    h264Encoder encoder({QSize(1, 1), QImage::Format_ARGB32_Premultiplied, path, fps, quality});
    if (!encoder.isValid()) {
        qCWarning(logAudio) << "Failed to create minimal video encoder";
        return QString();
    }
    QImage dot(1, 1, QImage::Format_ARGB32_Premultiplied);
    dot.fill(Qt::black);
    encoder.addFrame(0, dot);
    return encoder.close() && QFileInfo(path).size() > 0 ? path : QString();
}

} // namespace

QString createTrimmedAudioFile(const QString &audioPath, int startMs, int endMs, const QString &outputPath)
{
    // A private directory, in which no other user can place a link or file under the name of the video.
    const QTemporaryDir temporary(QDir::tempPath() + QStringLiteral("/kel_minimal_video_XXXXXX"));
    const QString video =
        temporary.isValid() ? createMinimalVideo(temporary.filePath(QStringLiteral("kel_minimal_video_for_audio.mp4")))
                            : QString();
    if (video.isEmpty()) {
        qCWarning(logAudio) << "Failed to create minimal video file for audio trimming";
        return QString();
    }
    AudioTrack track;
    track.path = audioPath;
    track.startMs = startMs;
    track.endMs = endMs;
    if (MixAudioVideoTracks(video, {track}, outputPath))
        return outputPath;
    qCWarning(logAudio) << "Failed to create trimmed audio file";
    return QString();
}

} // namespace kel
