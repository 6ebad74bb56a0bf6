#pragma once

#include <QAudioEncoderSettings>
#include <QString>

class QAudioRecorder;

/// What a recorder of the microphone needs to be told, and asked, beyond its own interface. GUI thread.
namespace MicrophoneBackend
{
/// Asks for a WAV file of `settings`, whose codec is "audio/wav", in the words that the recorder's backend knows.
void setWavSettings(QAudioRecorder &recorder, QAudioEncoderSettings settings);

/// After a stop: waits, bounded, until the backend has completed the file, which it does after stop() has returned.
/// Runs no event loop.
void waitForWholeFile(const QAudioRecorder &recorder, const QString &path);

/// Why there is nothing to record, in English; empty when there is, or nobody can tell.
QString problem();

/// Loads what the first recorder of a process takes half a second to load.
void preload();
} // namespace MicrophoneBackend
