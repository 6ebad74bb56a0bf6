#pragma once

#include <QAudioEncoderSettings>
#include <QString>

class QAudioRecorder;

/// What a recorder of the microphone needs to be told, and asked, beyond its own interface. GUI thread.
namespace kel::MicrophoneBackend
{
/// Asks for a WAV file of `settings`, whose codec is "audio/wav", in the words that the recorder's backend knows.
void setWavSettings(QAudioRecorder &recorder, QAudioEncoderSettings settings);

/// After a stop: waits, bounded, until the backend has completed the file, which it does after stop() has returned.
/// Runs no event loop.
void waitForWholeFile(const QAudioRecorder &recorder, const QString &path);

/// Without a microphone a backend records what the computer plays, or silence, and says nothing.
enum class Presence { Present, Missing, Unknown };
Presence presence();

/// Whether the WAV file holds nothing but zeros, which no microphone that is switched on delivers. Found out by the
/// first samples of one that is not.
bool isSilent(const QString &path);

/// Loads what the first recorder of a process takes half a second to load.
void preload();
} // namespace kel::MicrophoneBackend
