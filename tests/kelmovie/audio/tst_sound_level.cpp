#include "kelmovie/support/ScriptedAudioDevice.h"

#include "audio/capture/CaptureFormat.h"
#include "audio/capture/SoundDevices.h"
#include "audio/capture/SoundLevelMonitor.h"
#include "support/EnvironmentChange.h"
#include "support/TestTable.h"
#include "support/Tone.h"
#include "ui/settings/SoundLevelMeter.h"
#include "ui/settings/SoundLevelView.h"

#include <QtTest>

using namespace kel;

namespace
{

constexpr int kWaitMs = 30'000;

CaptureFormat formatOf(WORD tag, WORD bits)
{
    WAVEFORMATEX format{};
    format.wFormatTag = tag;
    format.nChannels = 1;
    format.nSamplesPerSec = 48'000;
    format.wBitsPerSample = bits;
    format.nBlockAlign = WORD(bits / 8);
    return CaptureFormat(format);
}

template <typename Sample>
QByteArray bytesOf(std::initializer_list<Sample> samples)
{
    return QByteArray(reinterpret_cast<const char *>(samples.begin()), int(samples.size() * sizeof(Sample)));
}

} // namespace

/// The level of devices, measured only while it is shown.
class SoundLevelTest : public QObject
{
    Q_OBJECT

private slots:
    void peaks_data();
    void peaks();
    void listensOnlyOnRequest();
    void lostDevice();
    void view();
    void withoutDevices();
};

void SoundLevelTest::peaks_data()
{
    const TestTable<WORD, WORD, QByteArray, float> row("tag", "bits", "bytes", "peak");
    const WORD pcm = WAVE_FORMAT_PCM;
    const WORD ieee = WAVE_FORMAT_IEEE_FLOAT;
    row("16 bits", pcm, WORD(16), bytesOf<qint16>({100, -16384, 8192}), 0.5F);
    row("full scale", pcm, WORD(16), bytesOf<qint16>({-32768, 32767}), 1.0F);
    row("24 bits", pcm, WORD(24), QByteArray::fromHex("ffff1f0000c0"), 0.5F);
    row("32 bits", pcm, WORD(32), bytesOf<qint32>({1 << 29, -5}), 0.25F);
    row("float", ieee, WORD(32), bytesOf<float>({0.1F, -0.75F}), 0.75F);
    row("not a number", ieee, WORD(32), bytesOf<float>({float(qQNaN()), 0.5F}), 0.5F);
    row("half a sample", pcm, WORD(16), QByteArray("\x01"), 0.0F);
    row("unknown", pcm, WORD(20), QByteArray(6, '\x7f'), 0.0F);
}

void SoundLevelTest::peaks()
{
    QFETCH(WORD, tag);
    QFETCH(WORD, bits);
    QFETCH(QByteArray, bytes);
    QFETCH(float, peak);
    QVERIFY(std::fabs(SoundLevelMonitor::peakOf(formatOf(tag, bits), bytes.constData(), bytes.size()) - peak) < 0.001F);
}

void SoundLevelTest::listensOnlyOnRequest()
{
    ScriptedAudioDevice device;
    device.refusesInt16 = true;
    device.setMode(ScriptedAudioDevice::Mode::Playing);
    SoundLevelMonitor monitor(eCapture, device.dependencies());
    QCOMPARE(device.calls(), QStringList());
    monitor.setListening(true);
    device.advance(50);
    QVERIFY(device.calls().contains("GetDefaultAudioEndpoint 1 0"));
    QCOMPARE(device.calls().filter("Initialize 0 0 ").size(), 1); // no loopback of a microphone
    QCOMPARE(monitor.takePeak(), ScriptedAudioDevice::sampleAt(ScriptedAudioDevice::kStartMs + 49));
    QCOMPARE(monitor.takePeak(), 0.0F);
    device.setMode(ScriptedAudioDevice::Mode::Silenced);
    device.advance(50);
    QCOMPARE(monitor.takePeak(), 0.0F);
    monitor.setListening(false);
    QTRY_COMPARE_WITH_TIMEOUT(device.calls().last(), QString("Release enumerator"), kWaitMs);
    QVERIFY(monitor.state() == SoundLevelMonitor::State::Waiting);
}

void SoundLevelTest::lostDevice()
{
    ScriptedAudioDevice device;
    device.setFailing("Start");
    SoundLevelMonitor monitor(eRender, device.dependencies());
    monitor.setListening(true);
    QTRY_VERIFY_WITH_TIMEOUT(monitor.state() == SoundLevelMonitor::State::NoDevice, kWaitMs);
    monitor.setListening(false);

    ScriptedAudioDevice other;
    SoundLevelMonitor second(eRender, other.dependencies());
    second.setListening(true);
    QTRY_VERIFY_WITH_TIMEOUT(second.state() == SoundLevelMonitor::State::Listening, kWaitMs);
    other.setMode(ScriptedAudioDevice::Mode::Gone);
    QTRY_VERIFY_WITH_TIMEOUT(second.state() == SoundLevelMonitor::State::NoDevice, kWaitMs);
    other.setMode(ScriptedAudioDevice::Mode::Idle);
    QTRY_VERIFY_WITH_TIMEOUT(second.state() == SoundLevelMonitor::State::Listening, kWaitMs);
}

void SoundLevelTest::view()
{
    SoundLevelView speakers(eRender, {"speakers", "missing", "silent", "absent"});
    SoundLevelView microphone(eCapture, {"microphone", "missing", "silent", "absent"});
    auto *const meter = speakers.findChild<SoundLevelMeter *>();
    speakers.show();
    microphone.show();
    {
        const Tone::Player tone("speakers", 1000);
        QTRY_COMPARE_WITH_TIMEOUT(meter->value(), -6, kWaitMs); // half of full scale
        QTRY_COMPARE_WITH_TIMEOUT(microphone.note(), QString("silent"), kWaitMs);
        QCOMPARE(speakers.note(), QString());
        QCOMPARE(microphone.findChild<SoundLevelMeter *>()->value(), SoundLevelMeter::kLowestDb);
    }
    QTRY_COMPARE_WITH_TIMEOUT(meter->value(), SoundLevelMeter::kLowestDb, kWaitMs);

    std::optional<float> played = 1.0F;
    speakers.setPlaybackLevel([&] { return played; });
    QTRY_COMPARE_WITH_TIMEOUT(meter->value(), 0, kWaitMs);
    QCOMPARE(speakers.note(), QString());
    played.reset();
    QTRY_COMPARE_WITH_TIMEOUT(speakers.note(), QString("absent"), kWaitMs);
}

void SoundLevelTest::withoutDevices()
{
    SoundLevelView view(eCapture, {"microphone", "missing", "silent", "absent"});
    {
        const EnvironmentChange noServer("PULSE_SERVER", "unix:/nowhere");
        QVERIFY(!SoundDevices::hasMicrophone());
        QVERIFY(!SoundDevices::hasSystemAudio());
        view.show();
        QTRY_COMPARE_WITH_TIMEOUT(view.note(), QString("missing"), kWaitMs);
    }
    QVERIFY(SoundDevices::hasMicrophone());
    QVERIFY(SoundDevices::hasSystemAudio());
    QTRY_COMPARE_WITH_TIMEOUT(view.note(), QString(), kWaitMs); // plugged in
}

QTEST_MAIN(SoundLevelTest)
#include "tst_sound_level.moc"
