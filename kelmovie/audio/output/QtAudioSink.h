#pragma once

#include "audio/output/AudioSink.h"

#include <QAudioFormat>

class QAudioOutput;
class QIODevice;

namespace kel
{

/// Plays on the default device at the time of each start.
class QtAudioSink : public AudioSink
{
    Q_OBJECT

public:
    explicit QtAudioSink(const QAudioFormat &format);
    ~QtAudioSink() override;

    bool start() override;
    void stop() override;
    QAudio::Error error() const override;
    int bytesFree() const override;
    int bytesBuffered() const override;
    qint64 write(const char *bytes, qint64 count) override;
    void setVolume(double volume) override;

private:
    const QAudioFormat m_format;
    double m_volume = 1.0;
    QAudioOutput *m_output = nullptr; ///< null when stopped; a child
    QIODevice *m_device = nullptr;    ///< owned by the output, which deletes it when the sound server goes away
};

} // namespace kel
