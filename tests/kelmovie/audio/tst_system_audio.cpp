#include "audio/capture/KelSystemAudioRecord.h"
#include "audio/capture/MicrophoneRecord.h"
#include "kelmovie/support/ScriptedAudioDevice.h"
#include "kelmovie/support/SoundFile.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"
#include "tasks/BackgroundTasks.h"

#include <QAudioEncoderSettings>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace kel;

namespace
{
using Mode = ScriptedAudioDevice::Mode;
constexpr float kAnySample = -1;
constexpr int kWaitMs = 30'000;

/// Records the scripted device into a temporary directory.
class Session
{
public:
    explicit Session(ScriptedAudioDevice &device, EDataFlow flow = eRender)
    {
        const auto fail = [this](const QString &problem) { failures << problem; };
        if (flow == eRender) {
            record = std::make_unique<KelSystemAudioRecord>(path(), fail, nullptr, device.dependencies());
            return;
        }
        QAudioEncoderSettings settings;
        settings.setSampleRate(ScriptedAudioDevice::kRate);
        settings.setChannelCount(1);
        record = std::make_unique<MicrophoneRecord>(settings, path(), fail, nullptr, device.dependencies());
    }
    QString path() const { return m_directory.filePath("Voice/sound.wav"); }
    QString partPath(int index) const { return m_directory.filePath(QString("Voice/sound_part%1.wav").arg(index)); }

    /// The samples of the file; empty unless its header describes exactly these.
    QVector<float> sound() const
    {
        WavHeader header;
        const QVector<float> samples = SoundFile::exactSamples(path(), &header);
        const bool isFloat = header.formatTag == WavHeader::kIeeeFloat;
        const bool isExpectedFormat = header.channelCount == 1 && header.sampleRate == ScriptedAudioDevice::kRate &&
                                      header.bitsPerSample == (isFloat ? 32 : 16);
        return isExpectedFormat ? samples : QVector<float>();
    }

private:
    const QTemporaryDir m_directory;

public:
    QStringList failures;
    std::unique_ptr<SoundRecorder> record;
};
} // namespace

class SystemAudioTest : public QObject
{
    Q_OBJECT

private slots:
    void soundKeepsItsTime_data();
    void soundKeepsItsTime();
    void keepsItsFormat();
    void failsAt_data();
    void failsAt();
    void formats_data();
    void formats();
    void waitsForEvents();
    void hangs_data();
    void hangs();
    void refusesRepeatedCalls();
    void joinsMuchInTheBackground();
    void fullDiskKeepsRecordedSound();
    void headerIsCurrentWhileRecording();
};

/// Steps with their durations in ms. Each sample has to be in the file at the recorded time at which it was played.
void SystemAudioTest::soundKeepsItsTime_data()
{
    const TestTable<QString, int> row("steps", "failures");
    row("played all along", "play 500", 0);
    row("nothing played", "idle 1230", 0);
    row("played for a while", "idle 730, play 250, idle 340, play 60, idle 200", 0);
    row("many short sounds", "play 30, idle 150, play 30, idle 160, play 30, idle 170, play 30, idle 180, play 50", 0);
    row("packets flagged as silent", "play 100, silence 300, play 100", 0);
    row("packets with a wrong time", "play 100, mistimed 100, play 50, future 100, play 50, ancient 100, play 100", 0);
    row("packets come late", "play 200, stall 380, play 100", 0);
    row("late from the start", "stall 250, play 100", 0);
    row("a long stall", "play 200, stall 10500, play 100", 1);
    row("pause while playing", "play 300, pause, play 400, resume, play 200", 0);
    row("pause while idle", "play 200, idle 150, pause, idle 2000, resume, play 100", 0);
    row("three pauses",
        "play 110, pause, play 70, resume, idle 90, pause, play 350, resume, play 40, pause, play 10, resume, "
        "play 80",
        0);
    row("stopped while paused", "play 200, pause, play 300", 0);
    row("a late packet, then a pause", "stall 100, pause, play 50, resume, play 100", 0);
    row("late packets, then a pause and a resume", "play 200, stall 60, pause, resume, play 100", 0);
    row("device replaced", "play 300, gone 1500, play 1500", 1);
    row("replaced by one with another format", "play 300, gone 1500, replace, play 1500", 1);
    row("device gone, then a pause", "play 100, gone 1200, pause, gone 300, resume, gone 200, play 1500", 1);
    row("device appears later", "gone 300, play 1500", 1);
    row("device appears after a pause", "gone 300, pause, gone 50, resume, gone 200, pause, resume, play 1500", 1);
    row("the microphone", "play 300, pause, play 400, resume, play 200, idle 150", 0);
    row("the microphone appears later", "gone 300, pause, gone 50, resume, gone 200, play 1500", 1);
}

void SystemAudioTest::soundKeepsItsTime()
{
    QFETCH(QString, steps);
    QFETCH(int, failures);
    static const QHash<QString, Mode> modes{
        {"idle", Mode::Idle},     {"play", Mode::Playing},    {"silence", Mode::Silenced}, {"mistimed", Mode::Mistimed},
        {"future", Mode::Future}, {"ancient", Mode::Ancient}, {"stall", Mode::Stalled},    {"gone", Mode::Gone}};
    ScriptedAudioDevice device;
    Session session(device, QString(QTest::currentDataTag()).startsWith("the microphone") ? eCapture : eRender);
    device.setMode(steps.startsWith("gone") ? Mode::Gone : Mode::Idle);
    QVERIFY(session.record->start());
    device.advance(0);

    QVector<float> expected;
    bool isPaused = false;
    bool wasGone = false;
    qint64 now = ScriptedAudioDevice::kStartMs;
    for (const QString &step : steps.split(", ")) {
        const QString action = step.section(' ', 0, 0);
        const int ms = step.section(' ', 1).toInt();
        if (action == "pause") {
            isPaused = true;
            session.record->pause();
        } else if (action == "resume") {
            isPaused = false;
            session.record->resume();
        } else if (action == "replace") {
            device.setFormat(WAVE_FORMAT_PCM, 16, 2 * ScriptedAudioDevice::kRate, 2);
        } else {
            device.setMode(modes[action]);
            device.advance(ms);
            const bool isHeard = action != "idle" && action != "silence" && action != "gone";
            // The capture looks for a new device once a second.
            const int unheard = wasGone && isHeard ? 1000 : 0;
            wasGone = action == "gone";
            for (int i = 0; i < ms && !isPaused; ++i)
                expected << (!isHeard ? 0 : i < unheard ? kAnySample : ScriptedAudioDevice::sampleAt(now + i));
            now += ms;
        }
    }
    session.record->stopRecording();

    const QVector<float> sound = session.sound();
    QCOMPARE(sound.size(), expected.size());
    for (int i = 0; i < sound.size(); ++i) {
        if (expected[i] != kAnySample && sound[i] != expected[i])
            QFAIL(qPrintable(QString("at %1 ms: %2 instead of %3").arg(i).arg(sound[i]).arg(expected[i])));
    }
    QCOMPARE(session.failures.size(), failures);
    QCOMPARE(QDir(QFileInfo(session.path()).path()).entryList(QDir::Files), QStringList{"sound.wav"});
}

/// Also when it is started again, with another device.
void SystemAudioTest::keepsItsFormat()
{
    ScriptedAudioDevice device;
    Session session(device);
    device.setMode(Mode::Playing);
    for (const int rate : {1, 3}) {
        device.setFormat(WAVE_FORMAT_EXTENSIBLE, 32, rate * ScriptedAudioDevice::kRate, rate);
        QVERIFY(session.record->start());
        device.advance(100);
        session.record->stopRecording();
        QCOMPARE(session.sound().size(), 100);
    }
    QCOMPARE(session.sound().last(), ScriptedAudioDevice::sampleAt(ScriptedAudioDevice::kStartMs + 199));
}

void SystemAudioTest::failsAt_data()
{
    const TestTable<QString, int> row("log", "released");
    row("CoCreateInstance", "", 1);
    row("GetDefaultAudioEndpoint 0 0", "", 2);
    row("Activate", "", 3);
    row("GetMixFormat", "", 3);
    row("Initialize 0 20000 10000000 0, tag 65534, 32 bits", "", 4);
    row("GetBufferSize", "W 获取音频缓冲区大小失败", 3);
    row("GetService", "W 获取音频捕获客户端失败", 3);
    row("Start", "W 启动音频客户端失败", 4);
}

/// The recording goes on, everything opened is released, and the failure is reported once. The device is tried again,
/// and its sound keeps its time.
void SystemAudioTest::failsAt()
{
    QFETCH(QString, log);
    QFETCH(int, released);
    LogCapture logged;
    ScriptedAudioDevice device;
    device.setFailing(QTest::currentDataTag());
    Session session(device);
    QVERIFY(session.record->start());
    QTRY_COMPARE_WITH_TIMEOUT(session.failures.size(), 1, kWaitMs);
    QCOMPARE(device.calls().filter("Release").size(), released);
    QCOMPARE(logged.take().join(';'), log);
    QVERIFY(session.record->isRecording());

    device.advance(400);
    device.setFailing({});
    device.setMode(Mode::Playing);
    device.advance(1000);
    session.record->stopRecording();
    const QVector<float> sound = session.sound();
    QCOMPARE(sound.size(), 1400);
    QCOMPARE(sound.at(399), 0.0F);
    QCOMPARE(sound.last(), ScriptedAudioDevice::sampleAt(ScriptedAudioDevice::kStartMs + 1399));
    QCOMPARE(session.failures.size(), 1);
}

void SystemAudioTest::formats_data()
{
    const TestTable<int, int, bool, int> row("tag", "bits", "refusesInt16", "fileTag");
    row("plain floats become integers", WAVE_FORMAT_IEEE_FLOAT, 32, false, WavHeader::kPcm);
    row("plain floats, not converted", WAVE_FORMAT_IEEE_FLOAT, 32, true, WavHeader::kIeeeFloat);
    row("plain integers", WAVE_FORMAT_PCM, 16, false, WavHeader::kPcm);
    row("extensible floats", WAVE_FORMAT_EXTENSIBLE, 32, false, WavHeader::kIeeeFloat);
}

/// A device with integer samples that refuses events is polled.
void SystemAudioTest::formats()
{
    QFETCH(int, tag);
    QFETCH(int, bits);
    QFETCH(bool, refusesInt16);
    QFETCH(int, fileTag);
    LogCapture logged;
    ScriptedAudioDevice device;
    device.refusesInt16 = refusesInt16;
    device.setFormat(tag, bits, 2 * ScriptedAudioDevice::kRate, 2);
    Session session(device);
    device.setMode(Mode::Playing);
    QVERIFY(session.record->start());
    device.advance(300);
    session.record->pause();
    session.record->resume();
    device.advance(200);
    session.record->stopRecording();

    const bool isInteger = fileTag == WavHeader::kPcm;
    WavHeader expected = WavHeader::pcm(2 * ScriptedAudioDevice::kRate, 2, isInteger ? 16 : 32);
    expected.formatTag = quint16(fileTag);
    expected.setDataSize(1000 * expected.blockAlign);
    QCOMPARE(readFile(session.path()).left(WavHeader::kSize), expected.toBytes());
    const QVector<float> sound = SoundFile::exactSamples(session.path(), &expected);
    QCOMPARE(sound.size(), 1000);
    QCOMPARE(sound.last(), ScriptedAudioDevice::sampleAt(ScriptedAudioDevice::kStartMs + 499));
    QCOMPARE(device.calls().contains("SetEventHandle"), isInteger);
    QCOMPARE(logged.take().filter("设置WASAPI事件句柄失败").size(), isInteger ? 1 : 0);
    QCOMPARE(session.failures, QStringList());
}

void SystemAudioTest::waitsForEvents()
{
    ScriptedAudioDevice device;
    device.setFormat(WAVE_FORMAT_PCM, 16);
    device.acceptsEvents = true;
    Session session(device);
    QVERIFY(session.record->start());
    QTRY_VERIFY_WITH_TIMEOUT(device.calls().contains("Start"), kWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(device.calls().contains("SetEventHandle"), kWaitMs);
    // Silence is written while no event arrives.
    device.advance(300);
    QTRY_COMPARE_WITH_TIMEOUT(QFileInfo(session.partPath(0)).size(), WavHeader::kSize + 300 * 2, kWaitMs);
    device.setMode(Mode::Playing);
    device.advance(200);
    session.record->pause();
    device.advance(10); // goes on beyond the end
    session.record->stopRecording();
    const QVector<float> sound = session.sound();
    QCOMPARE(sound.size(), 500);
    QCOMPARE(sound[299], 0.0F);
    for (int i = 300; i < 500; ++i)
        QCOMPARE(sound[i], ScriptedAudioDevice::sampleAt(ScriptedAudioDevice::kStartMs + i));
    QVERIFY(device.calls().contains("Stop"));
}

void SystemAudioTest::hangs_data()
{
    const TestTable<int> row("heardMs");
    row("when opened", 0);
    row("while recording", 500);
}

/// The stop gives up a capture in a call that does not return. What was recorded stays as it is when the call returns.
void SystemAudioTest::hangs()
{
    QFETCH(int, heardMs);
    ScriptedAudioDevice device;
    Session session(device);
    device.setMode(heardMs > 0 ? Mode::Playing : Mode::Hung);
    QVERIFY(session.record->start());
    const QPointer<QThread> thread = session.record->findChild<QThread *>();
    if (heardMs > 0)
        device.advance(heardMs);
    device.setMode(Mode::Hung);
    QTRY_VERIFY_WITH_TIMEOUT(device.isHanging(), kWaitMs);
    device.advance(200, false);
    session.record->stopRecording();
    QCOMPARE(session.failures, QStringList{"the sound system does not respond; the last sound is missing"});
    const QVector<float> sound = session.sound();
    QCOMPARE(sound.size(), heardMs > 0 ? heardMs + 200 : 0);
    if (heardMs > 0)
        QCOMPARE(sound[heardMs - 1], ScriptedAudioDevice::sampleAt(ScriptedAudioDevice::kStartMs + heardMs - 1));
    session.record.reset();

    QVERIFY(thread && thread->isRunning());
    device.setMode(Mode::Playing);
    QTRY_VERIFY_WITH_TIMEOUT(!thread, kWaitMs);
    QCOMPARE(session.sound(), sound);
}

void SystemAudioTest::refusesRepeatedCalls()
{
    LogCapture logged;
    ScriptedAudioDevice device;
    Session session(device);
    session.record->pause();
    session.record->resume();
    QVERIFY(session.record->start());
    QVERIFY(!session.record->start());
    session.record->pause();
    QVERIFY(!session.record->isRecording());
    QVERIFY2(session.record->start(), "start() resumes");
    device.advance(100);
    session.record->stopRecording();
    session.record->stopRecording();
    QCOMPARE(logged.take(),
             QStringList({"W 系统音频录制未在运行", "W 系统音频录制未处于暂停状态", "W 系统音频录制已在运行中"}));
    QCOMPARE(session.sound().size(), 100);
}

/// The stop does not wait until much sound is joined.
void SystemAudioTest::joinsMuchInTheBackground()
{
    const QTemporaryDir directory;
    ScriptedAudioDevice device;
    QSemaphore gate;
    QStringList joined;
    SoundRecorder::Source source;
    source.merge = [&](const QStringList &parts, const QString &) {
        if (gate.tryAcquire(1, kWaitMs))
            joined = parts;
        return QString();
    };
    SoundRecorder record(source, directory.filePath("Voice/sound.wav"), {}, nullptr, device.dependencies());
    QVERIFY(record.start());
    device.advance(200);
    record.pause();
    record.resume();
    device.advance(200);
    record.pause();
    const QString part = directory.filePath("Voice/sound_part0.wav");
    QVERIFY(QFile::resize(part, 1 << 30));
    record.stopRecording();
    QVERIFY(joined.isEmpty());
    gate.release();
    BackgroundTasks::wait(std::chrono::milliseconds(kWaitMs));
    QCOMPARE(joined, QStringList({part, directory.filePath("Voice/sound_part1.wav")}));
}

void SystemAudioTest::fullDiskKeepsRecordedSound()
{
    ScriptedAudioDevice device;
    device.setMode(Mode::Playing);
    Session session(device);
    {
        const FileSizeLimit limit(WavHeader::kSize + 250 * sizeof(float) + 3);
        QVERIFY(session.record->start());
        device.advance(2500);
        session.record->stopRecording();
    }
    QCOMPARE(session.failures.size(), 1);
    QVERIFY2(session.failures.first().contains("sound_part0.wav"), qPrintable(session.failures.first()));
    const QVector<float> sound = session.sound();
    QCOMPARE(sound.size(), 250);
    QCOMPARE(sound.last(), ScriptedAudioDevice::sampleAt(ScriptedAudioDevice::kStartMs + 249));
}

/// A process killed while recording leaves a playable part.
void SystemAudioTest::headerIsCurrentWhileRecording()
{
    ScriptedAudioDevice device;
    device.setMode(Mode::Playing);
    Session session(device);
    QVERIFY(session.record->start());
    device.advance(3000);
    const QByteArray part = readFile(session.partPath(0));
    const WavHeader header = WavHeader::fromBytes(part.constData());
    QVERIFY2(header.dataSize >= 1900 * sizeof(float) && header.dataSize <= quint32(part.size() - WavHeader::kSize),
             qPrintable(QString::number(header.dataSize)));
    session.record.reset();
    QCOMPARE(session.sound().size(), 3000);
    QCOMPARE(device.calls().join("; "),
             "CoCreateInstance; GetDefaultAudioEndpoint 0 0; Activate; GetMixFormat; "
             "Initialize 0 20000 10000000 0, tag 65534, 32 bits; GetBufferSize; GetService; Start; Stop; "
             "Release capture; Release client; Release device; Release enumerator");
}

QTEST_GUILESS_MAIN(SystemAudioTest)
#include "tst_system_audio.moc"
