#include "audio/output/QtAudioSink.h"

#include <QAudioOutput>

#include <algorithm>

namespace kel
{

namespace
{

constexpr int kBufferBytes = 32'768;
constexpr int kNotifyMs = 20;

} // namespace

QtAudioSink::QtAudioSink(const QAudioFormat &format)
    : m_format(format)
{
}

QtAudioSink::~QtAudioSink()
{
    QtAudioSink::stop();
}

bool QtAudioSink::start()
{
    stop();
    m_output = new QAudioOutput(m_format, this);
    m_output->setVolume(m_volume);
    m_output->setBufferSize(kBufferBytes);
    connect(m_output, &QAudioOutput::stateChanged, this, [this](QAudio::State state) {
        if (state == QAudio::StoppedState)
            m_device = nullptr;
        emit stateChanged(state);
    });
    connect(m_output, &QAudioOutput::notify, this, &AudioSink::notify);
    m_device = m_output->start();
    m_output->setNotifyInterval(kNotifyMs);
    return m_device != nullptr;
}

void QtAudioSink::stop()
{
    if (!m_output)
        return;
    m_device = nullptr;
    // Deleted later, because this may be called from one of its signals.
    m_output->disconnect(this);
    m_output->stop();
    m_output->deleteLater();
    m_output = nullptr;
}

QAudio::Error QtAudioSink::error() const
{
    return m_output ? m_output->error() : QAudio::NoError;
}

int QtAudioSink::bytesFree() const
{
    // Negative when the server is gone and the output has not noticed yet.
    return m_device ? std::max(m_output->bytesFree(), 0) : 0;
}

int QtAudioSink::bytesBuffered() const
{
    return m_device ? std::max(m_output->bufferSize() - bytesFree(), 0) : 0;
}

qint64 QtAudioSink::write(const char *bytes, qint64 count)
{
    return m_device ? m_device->write(bytes, count) : -1;
}

void QtAudioSink::setVolume(double volume)
{
    m_volume = volume;
    if (m_output)
        m_output->setVolume(volume);
}

} // namespace kel
