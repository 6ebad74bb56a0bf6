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
constexpr int kCompleteFileLimitMs = 2000;
constexpr unsigned long kPollIntervalMs = 2;

struct FormatNames {
    const char *codec;
    const char *container;
};

bool isComplete(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray header = file.read(WavHeader::kSize);
    return header.size() == WavHeader::kSize &&
           WavHeader::fromBytes(header.constData()).dataSize == file.size() - WavHeader::kSize;
}
} // namespace

void MicrophoneBackend::setWavSettings(QAudioRecorder &recorder, QAudioEncoderSettings settings)
{
    QString container;
    const QStringList codecs = recorder.supportedAudioCodecs();
    const QStringList containers = recorder.supportedContainers();
    if (!codecs.contains(settings.codec())) {
        for (const FormatNames &names :
             {FormatNames{"audio/x-raw", "audio/x-wav"}, FormatNames{"audio/pcm", "audio/x-wav"}}) {
            if (codecs.contains(QLatin1String(names.codec)) && containers.contains(QLatin1String(names.container))) {
                settings.setCodec(QLatin1String(names.codec));
                container = QLatin1String(names.container);
                break;
            }
        }
    }
    recorder.setEncodingSettings(settings, QVideoEncoderSettings(), container);
}

void MicrophoneBackend::waitForCompleteFile(const QAudioRecorder &recorder, const QString &path)
{
    // The backend's threads complete the file. Its status would change only in an event loop, which could also run
    // unrelated code.
    const QDeadlineTimer limit(kCompleteFileLimitMs);
    while (recorder.status() == QMediaRecorder::FinalizingStatus && !isComplete(path) && !limit.hasExpired())
        QThread::msleep(kPollIntervalMs);
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
    constexpr qint64 blockSize = 1 << 20;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(WavHeader::kSize) || file.atEnd())
        return false;
    while (!file.atEnd()) {
        const QByteArray bytes = file.read(blockSize);
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
