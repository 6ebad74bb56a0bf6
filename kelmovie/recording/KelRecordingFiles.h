#pragma once

#include <QLatin1String>
#include <QString>

/// Names of the files and directories that make up a recording.
namespace KelRecordingFiles
{

namespace detail
{
/// QLatin1String measures a literal with strlen(), which is no constant expression for every compiler.
template <int Size>
constexpr QLatin1String latin1(const char (&literal)[Size])
{
    return QLatin1String(literal, Size - 1);
}
} // namespace detail

// In the directory of the recording.
constexpr QLatin1String kMetadata = detail::latin1("TrackManager.meta");                 ///< metadata file
constexpr QLatin1String kLock = detail::latin1("recording.lock");                        ///< held while recording
constexpr QLatin1String kScreenDir = detail::latin1("Screen");                           ///< screen track
constexpr QLatin1String kMouseDir = detail::latin1("Mouse");                             ///< mouse track
constexpr QLatin1String kKeyboardDir = detail::latin1("Keyboard");                       ///< keyboard track
constexpr QLatin1String kVoiceDir = detail::latin1("Voice");                             ///< sound tracks
constexpr QLatin1String kTrackDirs[] = {kScreenDir, kMouseDir, kKeyboardDir, kVoiceDir}; ///< all of them

/// The subdirectory to which an earlier recording in the same directory is moved, numbered from 1.
inline QString previousDir(int number)
{
    return QStringLiteral("Previous-%1").arg(number);
}

// In kScreenDir.
constexpr QLatin1String kVideo = detail::latin1("screen_record.mp4");      ///< the video
constexpr QLatin1String kMkvVideo = detail::latin1("screen_record.mkv");   ///< never written, but played if it exists
constexpr QLatin1String kFrameIndex = detail::latin1("frame_indexes.dat"); ///< frame index
constexpr QLatin1String kFrameTimes = detail::latin1("frame_times.dat");   ///< times of the logic frames

// In kMouseDir.
constexpr QLatin1String kMouseMoves = detail::latin1("mousemoves-0.json");   ///< pointer positions
constexpr QLatin1String kMouseClicks = detail::latin1("mouseclicks-0.json"); ///< buttons and wheel
constexpr QLatin1String kCursorList = detail::latin1("cursor.json");         ///< pointer shapes
constexpr QLatin1String kCursorImageDir = detail::latin1("cursors");         ///< their images

// In kKeyboardDir.
constexpr QLatin1String kKeyLog = detail::latin1("keyboard.keymeta"); ///< keys

// In kVoiceDir: what the names of sound files begin with.
constexpr QLatin1String kSystemAudio = detail::latin1("system_audio"); ///< system audio
constexpr QLatin1String kMicrophone = detail::latin1("microphone");    ///< microphone

/// `name` in the directory `dir`.
inline QString path(const QString &dir, QLatin1String name)
{
    return dir + QLatin1Char('/') + name;
}

/// The encoded screen of a recording.
inline QString videoPath(const QString &recordingDir)
{
    return path(path(recordingDir, kScreenDir), kVideo);
}

/// For every logic frame the video frame to show.
inline QString frameIndexPath(const QString &recordingDir)
{
    return path(path(recordingDir, kScreenDir), kFrameIndex);
}

/// For every logic frame the time at which it was recorded.
inline QString frameTimesPath(const QString &recordingDir)
{
    return path(path(recordingDir, kScreenDir), kFrameTimes);
}

} // namespace KelRecordingFiles

/// Names of the tracks in failures that are reported while recording.
namespace KelTrackNames
{

/// The name of a track.
/// @{
constexpr QLatin1String kScreen = KelRecordingFiles::detail::latin1("Screen track");
constexpr QLatin1String kMouse = KelRecordingFiles::detail::latin1("Mouse track");
constexpr QLatin1String kKeyboard = KelRecordingFiles::detail::latin1("Keyboard track");
constexpr QLatin1String kSystemAudio = KelRecordingFiles::detail::latin1("System audio track");
constexpr QLatin1String kMicrophone = KelRecordingFiles::detail::latin1("Microphone track");
/// @}

} // namespace KelTrackNames
