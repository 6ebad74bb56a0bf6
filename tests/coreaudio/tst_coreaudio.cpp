#include "support/EnvironmentChange.h"
#include "support/TestTable.h"
#include "support/Tone.h"

#include <coreaudio/CoreAudio.h>

#include <QElapsedTimer>
#include <QtTest>

#include <algorithm>
#include <utility>

namespace
{
constexpr int kToneHz = 1000;

/// Holds a reference and releases it in the destructor.
template <typename Interface>
class Ref
{
public:
    Ref() = default;
    ~Ref()
    {
        if (m_object)
            m_object->Release();
    }
    Ref(const Ref &) = delete;
    Ref &operator=(const Ref &) = delete;
    Interface *operator->() const { return m_object; }
    Interface **out() { return &m_object; }
    void **untyped() { return reinterpret_cast<void **>(&m_object); }

private:
    Interface *m_object = nullptr;
};

HRESULT createEnumerator(Ref<IMMDeviceEnumerator> &enumerator)
{
    return CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_ALL, IID_IMMDeviceEnumerator,
                            enumerator.untyped());
}

/// A recording of a default device.
struct Recording {
    HRESULT open(EDataFlow flow = eRender, DWORD flags = AUDCLNT_STREAMFLAGS_LOOPBACK)
    {
        HRESULT result = createEnumerator(enumerator);
        if (SUCCEEDED(result))
            result = enumerator->GetDefaultAudioEndpoint(flow, eConsole, device.out());
        if (SUCCEEDED(result))
            result = device->Activate(IID_IAudioClient, CLSCTX_ALL, nullptr, client.untyped());
        if (SUCCEEDED(result))
            result = client->GetMixFormat(&format);
        if (SUCCEEDED(result))
            result = client->Initialize(AUDCLNT_SHAREMODE_SHARED, flags, 10'000'000, 0, format, nullptr);
        if (SUCCEEDED(result))
            result = client->GetService(IID_IAudioCaptureClient, capture.untyped());
        if (SUCCEEDED(result))
            result = client->Start();
        return result;
    }
    ~Recording() { CoTaskMemFree(format); }

    /// Reads a packet and appends its first channel to `sound`.
    HRESULT read()
    {
        BYTE *data = nullptr;
        UINT32 frames = 0;
        DWORD flags = 0;
        const HRESULT result = capture->GetBuffer(&data, &frames, &flags, nullptr, &recordedAt);
        if (result != S_OK)
            return result;
        const auto *samples = reinterpret_cast<const float *>(data);
        for (UINT32 i = 0; i < frames; ++i)
            sound.append(samples[i * format->nChannels]);
        return capture->ReleaseBuffer(frames);
    }

    Ref<IMMDeviceEnumerator> enumerator;
    Ref<IMMDevice> device;
    Ref<IAudioClient> client;
    Ref<IAudioCaptureClient> capture;
    WAVEFORMATEX *format = nullptr;
    UINT64 recordedAt = 0;
    QVector<float> sound;
};

bool receivesTone(Recording &recording)
{
    const auto isReceived = [&] {
        while (recording.read() == S_OK)
            continue;
        return Tone::level(recording.sound.mid(recording.sound.size() - Tone::kRate / 10), kToneHz, Tone::kRate) > 0.4;
    };
    return QTest::qWaitFor(isReceived, 20000);
}
} // namespace

class CoreaudioTest : public QObject
{
    Q_OBJECT

private slots:
    void records();
    void timestampsAreContinuous();
    void initializes_data();
    void initializes();
    void monitorIsNoMicrophone();
    void suspendedOutput();
    void vanishedOutput();
    void withoutServer();
    void deadServer();
};

void CoreaudioTest::records()
{
    for (const bool isMicrophone : {false, true}) {
        Recording recording;
        const HRESULT opened = isMicrophone ? recording.open(eCapture, 0) : recording.open();
        QCOMPARE(opened, S_OK);
        QCOMPARE(recording.format->wFormatTag, WAVE_FORMAT_EXTENSIBLE);
        QCOMPARE(recording.format->nSamplesPerSec, 48000u);
        QCOMPARE(recording.format->nBlockAlign, WORD(8));
        const Tone::Player player(isMicrophone ? "microphone" : "speakers", kToneHz);
        QVERIFY2(receivesTone(recording), isMicrophone ? "the microphone" : "the output");
    }
}

void CoreaudioTest::timestampsAreContinuous()
{
    Recording recording;
    QCOMPARE(recording.open(), S_OK);
    qint64 last = 0;
    bool wasHeldUp = false;
    for (int packets = 0; packets < 40;) {
        if (packets == 20 && !std::exchange(wasHeldUp, true)) {
            // Held up, the server says so. Afterwards its backlog keeps its times.
            UINT32 frames = 0;
            QVERIFY(Tone::signalServer("STOP"));
            const bool isNoticed = QTest::qWaitFor(
                [&] { return recording.client->GetCurrentPadding(&frames) == AUDCLNT_E_SERVICE_NOT_RUNNING; }, 20000);
            QVERIFY(Tone::signalServer("CONT"));
            QVERIFY(isNoticed);
        }
        const int before = recording.sound.size();
        if (recording.read() != S_OK) {
            QTest::qWait(1);
            continue;
        }
        const qint64 expected = last + before * qint64(10'000'000) / Tone::kRate;
        if (packets++ == 0)
            last = qint64(recording.recordedAt);
        else
            QVERIFY2(std::abs(qint64(recording.recordedAt) - expected) < 300'000, "off by 30 ms");
    }
    QElapsedTimer now;
    now.start();
    QVERIFY(qint64(recording.recordedAt) / 10'000 <= now.msecsSinceReference() + 100); // played a little later
}

void CoreaudioTest::initializes_data()
{
    const TestTable<DWORD, int, int, int, HRESULT> row("flags", "tag", "bits", "rate", "result");
    const DWORD loopback = AUDCLNT_STREAMFLAGS_LOOPBACK;
    row("16-bit integers", loopback, 1, 16, 44100, S_OK);
    row("24-bit integers", loopback, 1, 24, 48000, S_OK);
    row("floats", loopback, 3, 32, 48000, S_OK);
    row("doubles", loopback, 3, 64, 48000, AUDCLNT_E_UNSUPPORTED_FORMAT);
    row("A-law", loopback, 6, 8, 8000, AUDCLNT_E_UNSUPPORTED_FORMAT);
    row("no rate", loopback, 1, 16, 0, AUDCLNT_E_UNSUPPORTED_FORMAT);
    row("an output without loopback", DWORD(0), 1, 16, 48000, AUDCLNT_E_WRONG_ENDPOINT_TYPE);
    row("events", (loopback | AUDCLNT_STREAMFLAGS_EVENTCALLBACK), 1, 16, 48000, E_INVALIDARG);
}

void CoreaudioTest::initializes()
{
    QFETCH(DWORD, flags);
    QFETCH(int, tag);
    QFETCH(int, bits);
    QFETCH(int, rate);
    QFETCH(HRESULT, result);
    Ref<IMMDeviceEnumerator> enumerator;
    Ref<IMMDevice> device;
    Ref<IAudioClient> client;
    Ref<IAudioCaptureClient> capture;
    QCOMPARE(createEnumerator(enumerator), S_OK);
    QCOMPARE(enumerator->GetDefaultAudioEndpoint(eRender, eConsole, device.out()), S_OK);
    QCOMPARE(device->Activate(IID_IAudioClient, CLSCTX_ALL, nullptr, client.untyped()), S_OK);
    QCOMPARE(client->GetService(IID_IAudioCaptureClient, capture.untyped()), AUDCLNT_E_NOT_INITIALIZED);
    QCOMPARE(client->Start(), AUDCLNT_E_NOT_INITIALIZED);

    WAVEFORMATEX format{};
    format.wFormatTag = WORD(tag);
    format.nChannels = 2;
    format.nSamplesPerSec = DWORD(rate);
    format.wBitsPerSample = WORD(bits);
    format.nBlockAlign = WORD(2 * bits / 8);
    format.nAvgBytesPerSec = format.nBlockAlign * format.nSamplesPerSec;
    const auto initialize = [&] {
        return client->Initialize(AUDCLNT_SHAREMODE_SHARED, flags, 10'000'000, 0, &format, nullptr);
    };
    QCOMPARE(initialize(), result);
    if (result == S_OK) {
        QCOMPARE(initialize(), AUDCLNT_E_ALREADY_INITIALIZED);
        QCOMPARE(client->SetEventHandle(nullptr), AUDCLNT_E_EVENTHANDLE_NOT_EXPECTED);
    }
}

void CoreaudioTest::monitorIsNoMicrophone()
{
    QVERIFY(Tone::setDefault("source", "speakers.monitor"));
    Recording recording;
    QCOMPARE(recording.open(eCapture, 0), E_NOTFOUND);
    QVERIFY(Tone::setDefault("source", "microphone.monitor"));
}

void CoreaudioTest::suspendedOutput()
{
    Recording recording;
    QCOMPARE(recording.open(), S_OK);
    QVERIFY(Tone::control({"suspend-sink", "speakers", "1"}));
    while (recording.read() == S_OK) // packets recorded before
        continue;
    QCOMPARE(recording.read(), AUDCLNT_S_BUFFER_EMPTY);
    QVERIFY(Tone::control({"suspend-sink", "speakers", "0"}));
    const Tone::Player player("speakers", kToneHz);
    QVERIFY(receivesTone(recording));
}

void CoreaudioTest::vanishedOutput()
{
    const QString module = Tone::addSink("headphones");
    QVERIFY(Tone::setDefault("sink", "headphones"));
    Recording recording;
    QCOMPARE(recording.open(), S_OK);
    const Tone::Player player("microphone", kToneHz);
    QVERIFY(Tone::control({"unload-module", module}));
    QTRY_COMPARE_WITH_TIMEOUT(([&] {
                                  HRESULT result = S_OK;
                                  while (result == S_OK)
                                      result = recording.read();
                                  return result;
                              }()),
                              AUDCLNT_E_DEVICE_INVALIDATED, 20000);
    QVERIFY2(Tone::level(recording.sound, kToneHz, 48000) < 0.01, "the microphone was recorded");
    Recording next;
    QCOMPARE(next.open(), S_OK);
}

void CoreaudioTest::withoutServer()
{
    const EnvironmentChange noServer("PULSE_SERVER", "unix:/nonexistent/socket");
    Recording recording;
    QCOMPARE(recording.open(), AUDCLNT_E_SERVICE_NOT_RUNNING);
}

void CoreaudioTest::deadServer()
{
    Recording recording;
    QCOMPARE(recording.open(), S_OK);
    QVERIFY(Tone::signalServer("TERM"));
    QTRY_COMPARE_WITH_TIMEOUT(recording.read(), AUDCLNT_E_DEVICE_INVALIDATED, 20000);
    QCOMPARE(recording.client->Stop(), AUDCLNT_E_DEVICE_INVALIDATED);
    Ref<IMMDevice> device;
    QVERIFY(FAILED(recording.enumerator->GetDefaultAudioEndpoint(eRender, eConsole, device.out())));
}

QTEST_GUILESS_MAIN(CoreaudioTest)
#include "tst_coreaudio.moc"
