#include "audio/capture/KelSystemAudioRecord.h"
#include "kelmovie/support/ScriptedAudioDevice.h"
#include "kelmovie/support/SoundFile.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"
#include "tasks/BackgroundTasks.h"

#include <QSemaphore>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace kel;

namespace
{
constexpr float kAnySample = -1;
constexpr int kWaitMs = 30'000;

/// Records the scripted device into a temporary directory.
class Session
{
public:
    explicit Session(ScriptedAudioDevice &device)
        : record(std::make_unique<KelSystemAudioRecord>(
              path(), [this](const QString &problem) { fail(problem); }, nullptr, device.dependencies()))
    {
    }
    QString path() const { return m_directory.filePath("Voice/system_audio.wav"); }
    QString partPath(int index) const
    {
        return m_directory.filePath(QString("Voice/system_audio_part%1.wav").arg(index));
    }
    QStringList failures() const
    {
        const std::lock_guard lock(m_mutex);
        return m_failures;
    }

    /// The samples of the file; empty unless its header describes exactly these.
    QVector<float> sound() const
    {
        WavHeader header;
        const QVector<float> samples = SoundFile::exactSamples(path(), &header);
        const bool isExpectedFormat = header.formatTag == WavHeader::kIeeeFloat && header.blockAlign == sizeof(float) &&
                                      header.sampleRate == ScriptedAudioDevice::kRate;
        return isExpectedFormat ? samples : QVector<float>();
    }

private:
    void fail(const QString &problem)
    {
        const std::lock_guard lock(m_mutex);
        m_failures << problem;
    }

    const QTemporaryDir m_directory;
    mutable std::mutex m_mutex;
    QStringList m_failures;

public:
    std::unique_ptr<KelSystemAudioRecord> record;
};
} // namespace

class SystemAudioTest : public QObject
{
    Q_OBJECT

private slots:
    void soundKeepsItsTime_data();
    void soundKeepsItsTime();
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
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<int>("failures");
    const auto row = [](const char *name, const char *steps, int failures = 0) {
        QTest::newRow(name) << QString(steps).split(", ") << failures;
    };
    row("played all along", "play 500");
    row("nothing played", "idle 1230");
    row("played for a while", "idle 730, play 250, idle 340, play 60, idle 200");
    row("many short sounds", "play 30, idle 150, play 30, idle 160, play 30, idle 170, play 30, idle 180, play 50");
    row("packets flagged as silent", "play 100, silence 300, play 100");
    row("packets come late", "play 200, stall 380, play 100");
    row("late from the start", "stall 250, play 100");
    row("a long stall", "play 200, stall 10500, play 100", 1);
    row("pause while playing", "play 300, pause, play 400, resume, play 200");
    row("pause while idle", "play 200, idle 150, pause, idle 2000, resume, play 100");
    row("three pauses",
        "play 110, pause, play 70, resume, idle 90, pause, play 350, resume, play 40, pause, play 10, resume, "
        "play 80");
    row("stopped while paused", "play 200, pause, play 300");
    row("a late packet, then a pause", "stall 100, pause, play 50, resume, play 100");
    row("device replaced", "play 300, gone 1500, play 1500", 1);
    row("device gone, then a pause", "play 100, gone 1200, pause, gone 300, resume, gone 200, play 1500", 1);
    row("device appears later", "gone 300, play 1500", 1);
    row("device appears after a pause", "gone 300, pause, gone 50, resume, gone 200, pause, resume, play 1500", 1);
}

void SystemAudioTest::soundKeepsItsTime()
{
    QFETCH(QStringList, steps);
    QFETCH(int, failures);
    ScriptedAudioDevice device;
    Session session(device);
    device.setMode(steps.first().startsWith("gone") ? ScriptedAudioDevice::Mode::Gone
                                                    : ScriptedAudioDevice::Mode::Idle);
    QVERIFY(session.record->start());
    device.advance(0);

    static const QHash<QString, ScriptedAudioDevice::Mode> modes{{"idle", ScriptedAudioDevice::Mode::Idle},
                                                                 {"play", ScriptedAudioDevice::Mode::Playing},
                                                                 {"silence", ScriptedAudioDevice::Mode::Silenced},
                                                                 {"stall", ScriptedAudioDevice::Mode::Stalled},
                                                                 {"gone", ScriptedAudioDevice::Mode::Gone}};
    QVector<float> expected;
    bool isPaused = false;
    bool wasGone = false;
    qint64 now = device.dependencies().nowMs();
    for (const QString &step : steps) {
        const QString action = step.section(' ', 0, 0);
        const int ms = step.section(' ', 1).toInt();
        if (action == "pause") {
            isPaused = true;
            session.record->pause();
        } else if (action == "resume") {
            isPaused = false;
            session.record->resume();
        } else {
            device.setMode(modes[action]);
            device.advance(ms);
            const bool isHeard = action == "play" || action == "stall";
            // The capture looks for a new device once a second.
            const int unheard = wasGone && action == "play" ? 1000 : 0;
            wasGone = action == "gone";
            for (int i = 0; i < ms && !isPaused; ++i)
                expected.append(!isHeard ? 0 : i < unheard ? kAnySample : float(now + i));
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
    QCOMPARE(session.failures().size(), failures);
    QVERIFY(QDir(QFileInfo(session.path()).path()).entryList(QDir::Files).size() == 1);
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
    QTRY_COMPARE(device.calls().filter("Release").size(), released);
    QTRY_COMPARE(session.failures().size(), 1);
    QCOMPARE(logged.take().join(';'), log);
    QVERIFY(session.record->isRecording());

    const qint64 startedAt = device.dependencies().nowMs();
    device.advance(400);
    device.setFailing({});
    device.setMode(ScriptedAudioDevice::Mode::Playing);
    device.advance(1000);
    session.record->stopRecording();
    const QVector<float> sound = session.sound();
    QCOMPARE(sound.size(), 1400);
    QCOMPARE(sound.at(399), 0.0F);
    QCOMPARE(sound.last(), float(startedAt + 1399));
    QCOMPARE(session.failures().size(), 1);
}

void SystemAudioTest::formats_data()
{
    const TestTable<int, int, bool, int, int, bool> row("tag", "bits", "refusesInt16", "fileTag", "fileBits",
                                                        "asksForEvents");
    row("plain floats become integers", 3, 32, false, 1, 16, true);
    row("plain floats, not converted", 3, 32, true, 3, 32, false);
    row("plain integers", 1, 16, false, 1, 16, true);
    row("extensible floats", 65534, 32, false, 3, 32, false);
}

/// A device with integer samples that refuses events is polled.
void SystemAudioTest::formats()
{
    QFETCH(int, tag);
    QFETCH(int, bits);
    QFETCH(bool, refusesInt16);
    QFETCH(int, fileTag);
    QFETCH(int, fileBits);
    QFETCH(bool, asksForEvents);
    LogCapture logged;
    ScriptedAudioDevice device;
    device.refusesInt16 = refusesInt16;
    device.mix.Format.wFormatTag = WORD(tag);
    device.mix.Format.wBitsPerSample = WORD(bits);
    device.mix.Format.nBlockAlign = WORD(bits / 8);
    device.mix.Format.nAvgBytesPerSec = DWORD(bits / 8 * ScriptedAudioDevice::kRate);
    Session session(device);
    device.setMode(ScriptedAudioDevice::Mode::Silenced);
    QVERIFY(session.record->start());
    device.advance(300);
    session.record->pause();
    session.record->resume();
    device.advance(200);
    session.record->stopRecording();

    WavHeader expected = WavHeader::pcm(ScriptedAudioDevice::kRate, 1, quint16(fileBits));
    expected.formatTag = quint16(fileTag);
    expected.setDataSize(500 * expected.blockAlign);
    const QByteArray file = readFile(session.path());
    QCOMPARE(file.left(WavHeader::kSize), expected.toBytes());
    QCOMPARE(file.size(), WavHeader::kSize + 500 * expected.blockAlign);
    QCOMPARE(device.calls().contains("SetEventHandle"), asksForEvents);
    QCOMPARE(logged.take().filter("设置WASAPI事件句柄失败").size(), asksForEvents ? 1 : 0);
    QVERIFY(session.failures().isEmpty());
}

void SystemAudioTest::waitsForEvents()
{
    ScriptedAudioDevice device;
    device.mix.Format.wFormatTag = WAVE_FORMAT_PCM;
    device.mix.Format.cbSize = 0;
    device.acceptsEvents = true;
    Session session(device);
    QVERIFY(session.record->start());
    QTRY_VERIFY_WITH_TIMEOUT(device.calls().contains("SetEventHandle"), kWaitMs);
    // Silence is written while no event arrives.
    device.advance(300, false);
    QTRY_COMPARE_WITH_TIMEOUT(QFileInfo(session.partPath(0)).size(), WavHeader::kSize + 300 * qint64(sizeof(float)),
                              kWaitMs);
    session.record->resume();
    session.record->pause();
    session.record->stopRecording();
    QVERIFY(device.calls().contains("SetEventHandle"));
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
    device.setMode(heardMs > 0 ? ScriptedAudioDevice::Mode::Playing : ScriptedAudioDevice::Mode::Hung);
    QVERIFY(session.record->start());
    const QPointer<QThread> thread = session.record->findChild<QThread *>();
    if (heardMs > 0)
        device.advance(heardMs);
    device.setMode(ScriptedAudioDevice::Mode::Hung);
    QTRY_VERIFY_WITH_TIMEOUT(device.isHanging(), kWaitMs);
    device.advance(200, false);
    session.record->stopRecording();
    QCOMPARE(session.failures(), QStringList{"the sound system does not respond; the last sound is missing"});
    const QVector<float> sound = session.sound();
    QCOMPARE(sound.size(), heardMs > 0 ? heardMs + 200 : 0);
    if (heardMs > 0)
        QCOMPARE(sound[heardMs - 1], sound[0] + float(heardMs - 1));
    session.record.reset();

    QVERIFY(thread && thread->isRunning());
    device.setMode(ScriptedAudioDevice::Mode::Playing);
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
    device.setMode(ScriptedAudioDevice::Mode::Playing);
    Session session(device);
    {
        const FileSizeLimit limit(WavHeader::kSize + 250 * sizeof(float) + 3);
        QVERIFY(session.record->start());
        device.advance(2500);
        session.record->stopRecording();
    }
    QCOMPARE(session.failures().size(), 1);
    QVERIFY2(session.failures().first().contains("system_audio_part0.wav"), qPrintable(session.failures().first()));
    const QVector<float> sound = session.sound();
    QCOMPARE(sound.size(), 250);
    QCOMPARE(sound.last(), sound.first() + 249);
}

/// A process killed while recording leaves a playable part.
void SystemAudioTest::headerIsCurrentWhileRecording()
{
    ScriptedAudioDevice device;
    device.setMode(ScriptedAudioDevice::Mode::Playing);
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
