#pragma once

#include <QAudio>
#include <QObject>

#include <functional>
#include <memory>

class QAudioFormat;

namespace kel
{

/// Where a player's sound goes. The player writes when there is room. There is no pause: Qt's ends the process when the
/// sound server has just gone away. Stopping and starting costs a millisecond.
class AudioSink : public QObject
{
    Q_OBJECT

public:
    using Factory = std::function<std::unique_ptr<AudioSink>(const QAudioFormat &format)>;

    /// Begins with an empty buffer. False when there is no device that plays the format.
    virtual bool start() = 0;
    /// Ends at once; what was not heard yet is dropped.
    virtual void stop() = 0;
    virtual QAudio::Error error() const = 0;
    /// Bytes that the buffer takes now, 0 when it is full or the device is gone.
    virtual int bytesFree() const = 0;
    /// Bytes that were written and not yet taken by the device.
    virtual int bytesBuffered() const = 0;
    /// Returns how many bytes were taken, negative on failure.
    virtual qint64 write(const char *bytes, qint64 count) = 0;
    /// 0.0 to 1.0, for what is written from now on.
    virtual void setVolume(double volume) = 0;

signals:
    void stateChanged(QAudio::State state);
    /// About every 20 ms while sound is being played.
    void notify();
};

} // namespace kel
