#pragma once

#include <QAudioEncoderSettings>
#include <QString>

class QAudioRecorder;

/// Works around differences between the multimedia backends that record the microphone. GUI thread.
namespace kel::MicrophoneBackend
{
/// Configures the recorder for a WAV file with `settings`, whose codec is "audio/wav", using the codec and container
/// names that its backend supports.
void setWavSettings(QAudioRecorder &recorder, QAudioEncoderSettings settings);

/// To be called after a stop: waits, for a limited time, until the backend has completed the file, which happens after
/// stop() has returned. Runs no event loop.
void waitForCompleteFile(const QAudioRecorder &recorder, const QString &path);

/// Whether there is a microphone. Without one, a backend records what the computer plays, or silence, and reports no
/// error.
enum class Presence { Present, Missing, Unknown };
Presence presence();

/// Whether the WAV file holds only zeros, which no active microphone delivers. Reads up to the first other sample.
bool isSilent(const QString &path);

/// Loads the backend, which otherwise delays the first recorder of a process by half a second.
void preload();
} // namespace kel::MicrophoneBackend
