#include "audio/capture/MicrophoneBackend.h"

#include "recording/wav/WavHeader.h"

#include <coreaudio/CoreAudio.h>

#include <QAudioRecorder>
#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

namespace kel
{

namespace
{
constexpr int WholeFileLimitMs = 2000;
constexpr unsigned long LookAgainMs = 2;

struct Words {
    const char *codec;
    const char *container;
};

bool isWhole(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray header = file.read(WavHeader::Size);
    return header.size() == WavHeader::Size &&
           WavHeader::fromBytes(header.constData()).dataSize == file.size() - WavHeader::Size;
}
} // namespace

void MicrophoneBackend::setWavSettings(QAudioRecorder &recorder, QAudioEncoderSettings settings)
{
    QString container;
    const QStringList codecs = recorder.supportedAudioCodecs();
    const QStringList containers = recorder.supportedContainers();
    if (!codecs.contains(settings.codec())) {
        for (const Words &words : {Words{"audio/x-raw", "audio/x-wav"}, Words{"audio/pcm", "audio/x-wav"}}) {
            if (codecs.contains(QLatin1String(words.codec)) && containers.contains(QLatin1String(words.container))) {
                settings.setCodec(QLatin1String(words.codec));
                container = QLatin1String(words.container);
                break;
            }
        }
    }
    recorder.setEncodingSettings(settings, QVideoEncoderSettings(), container);
}

void MicrophoneBackend::waitForWholeFile(const QAudioRecorder &recorder, const QString &path)
{
    // The backend's own threads complete the file; its status would change only with the event loop, in which anything
    // else might happen, too.
    const QDeadlineTimer limit(WholeFileLimitMs);
    while (recorder.status() == QMediaRecorder::FinalizingStatus && !isWhole(path) && !limit.hasExpired())
        QThread::msleep(LookAgainMs);
}

MicrophoneBackend::Presence MicrophoneBackend::presence()
{
    CoInitialize(nullptr);
    IMMDeviceEnumerator *enumerator = nullptr;
    IMMDevice *device = nullptr;
    Presence presence = Presence::Unknown;
    if (SUCCEEDED(CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_ALL, IID_IMMDeviceEnumerator,
                                   reinterpret_cast<void **>(&enumerator)))) {
        presence = Presence::Missing;
        if (SUCCEEDED(enumerator->GetDefaultAudioEndpoint(eCapture, eConsole, &device))) {
            presence = Presence::Present;
            device->Release();
        }
        enumerator->Release();
    }
    CoUninitialize();
    return presence;
}

bool MicrophoneBackend::isSilent(const QString &path)
{
    constexpr qint64 block = 1 << 20;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(WavHeader::Size) || file.atEnd())
        return false;
    while (!file.atEnd()) {
        const QByteArray bytes = file.read(block);
        if (bytes.count('\0') != bytes.size())
            return false;
    }
    return true;
}

void MicrophoneBackend::preload()
{
    const QAudioRecorder recorder;
}

} // namespace kel
