#pragma once

#include <QAudio>
#include <QObject>

#include <functional>
#include <memory>

class QAudioFormat;

namespace kel
{

/// The output of a player, which writes when there is room. It cannot pause: pausing the Qt output terminates the
/// process if the sound server has just gone away. Stopping and starting takes a millisecond.
class AudioSink : public QObject
{
    Q_OBJECT

public:
    using Factory = std::function<std::unique_ptr<AudioSink>(const QAudioFormat &format)>;

    /// Starts with an empty buffer. False when no device plays the format.
    virtual bool start() = 0;
    /// Stops immediately and drops the buffered sound.
    virtual void stop() = 0;
    virtual QAudio::Error error() const = 0;
    /// Bytes that fit into the buffer; 0 when it is full or the device is gone.
    virtual int bytesFree() const = 0;
    /// Bytes written but not yet taken by the device.
    virtual int bytesBuffered() const = 0;
    /// Returns the number of bytes accepted, negative on failure.
    virtual qint64 write(const char *bytes, qint64 count) = 0;
    /// From 0.0 to 1.0, for everything written from now on.
    virtual void setVolume(double volume) = 0;

signals:
    void stateChanged(QAudio::State state);
    /// About every 20 ms while sound is being played.
    void notify();
};

} // namespace kel
