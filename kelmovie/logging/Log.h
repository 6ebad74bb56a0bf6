#pragma once

#include <QLoggingCategory>

/// The logging categories of the module. KelMovieGlobal.h documents their names for hosts.
namespace kel
{

/// Capture, playback and processing of sound.
inline const QLoggingCategory &logAudio()
{
    static const QLoggingCategory category("kelmovie.audio");
    return category;
}

inline const QLoggingCategory &logExport()
{
    static const QLoggingCategory category("kelmovie.export");
    return category;
}

inline const QLoggingCategory &logPlayback()
{
    static const QLoggingCategory category("kelmovie.playback");
    return category;
}

/// The process of recording: start, stop, tracks and their threads.
inline const QLoggingCategory &logRecord()
{
    static const QLoggingCategory category("kelmovie.record");
    return category;
}

/// The files of a recording.
inline const QLoggingCategory &logRecording()
{
    static const QLoggingCategory category("kelmovie.recording");
    return category;
}

} // namespace kel
