#include "facade/KelMultiTrackRecorder.h"
#include "kelmovie/support/ScriptedAudioDevice.h"
#include "kelmovie/support/SoundFile.h"
#include "record/KelRecordVoiceTrack.h"
#include "support/EnvironmentChange.h"
#include "support/TestTable.h"
#include "support/Tone.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <iterator>

using namespace kel;

Q_DECLARE_METATYPE(WavHeader)

namespace
{
using Device = ScriptedAudioDevice;
constexpr int kWaitMs = 30'000;

/// The only file of a source that is not a part.
QString wholeFile(const QString &directory, const QString &source)
{
    const QStringList files = QDir(directory).entryList({source + "_*.wav"}, QDir::Files);
    return files.size() == 1 && !files.first().contains("_part") ? directory + '/' + files.first() : directory;
}
} // namespace

class VoiceTrackTest : public QObject
{
    Q_OBJECT

private slots:
    void keepsMoments_data();
    void keepsMoments();
    void recordsBothAcrossPauses();
    void continuesWithoutSound();
    void goesOnWhileTheServerHangs();
};

void VoiceTrackTest::keepsMoments_data()
{
    const TestTable<bool, WavHeader> row("isMicrophone", "format");
    WavHeader ownFormat = WavHeader::pcm(Device::kRate, 1, 32);
    ownFormat.formatTag = WavHeader::kIeeeFloat;
    row("system_audio", false, ownFormat);
    row("microphone", true, WavHeader::pcm(44'100, 2, 16));
}

/// The sound refers to the moments at which the recording's clock changes, although the track is called later.
void VoiceTrackTest::keepsMoments()
{
    QFETCH(bool, isMicrophone);
    QFETCH(WavHeader, format);
    const QTemporaryDir directory;
    Device device;
    device.setMode(Device::Mode::Playing);
    KelRecordVoiceTrack track(QRect(), directory.path(), nullptr, device.dependencies());
    track.setSystemAudioEnabled(!isMicrophone);
    track.setMicrophoneEnabled(isMicrophone);
    track.noteClockChange();
    device.advance(30, false);
    track.startRecording();
    device.advance(200);
    track.noteClockChange(); // at 230 ms
    device.advance(30);
    track.pauseRecording();
    device.advance(50);
    track.noteClockChange(); // at 310 ms
    track.startRecording();
    device.advance(100);
    track.noteClockChange(); // at 410 ms
    device.advance(40);
    track.stopRecording(0, 0);

    WavHeader header;
    const QVector<float> sound = SoundFile::exactSamples(wholeFile(directory.path(), QTest::currentDataTag()), &header);
    format.setDataSize(330 * qint64(format.sampleRate) / 1000 * format.blockAlign);
    QCOMPARE(header.toBytes(), format.toBytes());
    for (int i = 0; i < sound.size(); ++i) {
        const qint64 recordedMs = qint64(i) * 1000 / format.sampleRate;
        const qint64 ms = recordedMs < 230 ? recordedMs : recordedMs + 80;
        const float expected = ms < 30 ? 0 : Device::sampleAt(Device::kStartMs + ms);
        if (sound[i] != expected)
            QFAIL(qPrintable(QString("at %1 ms: %2 instead of %3").arg(recordedMs).arg(sound[i]).arg(expected)));
    }
}

/// While tones play, each source has one file that is as long as the recording and contains only its own tone.
void VoiceTrackTest::recordsBothAcrossPauses()
{
    struct Source {
        QString name;
        double hz;
        Tone::Player tone;
    };
    const Source sources[] = {{"system_audio", 1000, {"speakers", 1000}}, {"microphone", 440, {"microphone", 440}}};
    const QTemporaryDir directory;
    KelMultiTrackRecorder recorder;
    QSignalSpy errors(&recorder, &KelMultiTrackRecorder::recordingError);
    KelMultiTrackRecorder::RecordConfig config;
    config.outputDir = directory.filePath("recording");
    config.enableScreen = false;
    config.enableMouse = false;
    config.enableSystemAudio = true;
    config.enableMicrophone = true;
    recorder.setRecordConfig(config);
    recorder.setRecordArea(QRect(0, 0, 10, 10));
    const QString voice = config.outputDir + "/Voice";
    const auto isHeard = [&](const Source &source, int part) {
        const QStringList files = QDir(voice).entryList({QString("%1_*_part%2.wav").arg(source.name).arg(part)});
        const QByteArray file = files.isEmpty() ? QByteArray() : readFile(voice + '/' + files.first());
        if (file.size() < WavHeader::kSize)
            return false;
        const WavHeader header = WavHeader::fromBytes(file.constData());
        const QVector<float> sound = SoundFile::samples(file, header);
        const int rate = int(header.sampleRate);
        return sound.size() > rate / 2 && Tone::level(sound.mid(sound.size() - rate / 2), source.hz, rate) > 0.45;
    };
    constexpr int kParts = 3;
    for (int part = 0; part < kParts; ++part) {
        if (part > 0)
            recorder.pauseRecording();
        QVERIFY(recorder.startRecording());
        for (const Source &source : sources)
            QTRY_VERIFY_WITH_TIMEOUT(isHeard(source, part), kWaitMs);
    }
    recorder.stopRecording();
    QVERIFY2(errors.isEmpty(), qPrintable(errors.value(0).value(0).toString()));

    const int durationMs =
        QJsonDocument::fromJson(readFile(config.outputDir + "/TrackManager.meta"))["duration"].toInt();
    QCOMPARE(QDir(voice).entryList(QDir::Files).size(), 2);
    for (const Source &source : sources) {
        WavHeader header;
        const QVector<float> samples = SoundFile::exactSamples(wholeFile(voice, source.name), &header);
        const int rate = int(header.sampleRate);
        QVERIFY(rate > 0);
        const qint64 lengthMs = qint64(samples.size()) * 1000 / rate;
        QVERIFY2(qAbs(lengthMs - durationMs) < 30, qPrintable(QString("%1 of %2 ms").arg(lengthMs).arg(durationMs)));
        QVector<bool> windows;
        const int window = rate / 20;
        for (int at = 0; at + window <= samples.size(); at += window) {
            const QVector<float> part = samples.mid(at, window);
            windows << (Tone::level(part, source.hz, rate) > 0.45);
            for (const Source &other : sources)
                QVERIFY(&other == &source || Tone::level(part, other.hz, rate) < 0.05);
        }
        // Devices start with a delay. Then the tone is whole, but where parts are joined it jumps, in a window or two.
        const int delay = windows.indexOf(true);
        const auto missing = std::count(windows.begin() + delay, windows.end(), false);
        QVERIFY2(missing <= 2 * (kParts - 1), qPrintable(QString("%1 windows after %2").arg(missing).arg(delay)));
    }
}

void VoiceTrackTest::continuesWithoutSound()
{
    const auto failureOf = [](bool isMicrophone) {
        const QTemporaryDir directory;
        QStringList failures;
        KelRecordVoiceTrack track(QRect(), directory.path());
        track.setFailureHandler(
            [&](const QString &name, const QString &problem) { failures << name + ": " + problem; });
        track.setSystemAudioEnabled(!isMicrophone);
        track.setMicrophoneEnabled(isMicrophone);
        track.startRecording();
        if (!QTest::qWaitFor([&] { return !failures.isEmpty(); }, kWaitMs))
            return QString("nothing was reported");
        track.stopRecording(1, 100);
        return failures.join("; ");
    };
    {
        const EnvironmentChange noServer("PULSE_SERVER", "unix:/nonexistent/socket");
        QCOMPARE(failureOf(false), QString("System audio track: the sound system does not respond"));
    }
    QVERIFY(Tone::control({"set-default-source", "speakers.monitor"}));
    const QString failure = failureOf(true);
    QVERIFY(Tone::control({"set-default-source", "microphone.monitor"}));
    QCOMPARE(failure, QString("Microphone track: there is no microphone"));
}

/// No call waits for a server that does not respond, and the sound before stays.
void VoiceTrackTest::goesOnWhileTheServerHangs()
{
    const QTemporaryDir directory;
    for (const bool hangsFromTheStart : {false, true}) {
        const QString voice = directory.filePath(QString::number(hangsFromTheStart));
        QStringList failures;
        KelRecordVoiceTrack track(QRect(), voice);
        track.setFailureHandler([&](const QString &, const QString &problem) { failures << problem; });
        track.setSystemAudioEnabled(true);
        track.setMicrophoneEnabled(true);
        const auto isRecorded = [&](qint64 ms) {
            const auto isLong = [&] {
                const QFileInfoList parts = QDir(voice).entryInfoList({"microphone_*_part0.wav"});
                return !parts.isEmpty() && parts.first().size() > ms * 44'100 / 1000 * 4;
            };
            return QTest::qWaitFor(isLong, kWaitMs);
        };
        if (hangsFromTheStart)
            QVERIFY(Tone::signalServer("STOP"));
        track.startRecording();
        const bool isBegun = isRecorded(150);
        const bool isStopped = hangsFromTheStart || Tone::signalServer("STOP");
        const bool isSilenceRecorded = isRecorded(2000);
        const QDeadlineTimer limit(10'000);
        track.pauseRecording();
        track.startRecording();
        track.stopRecording(1, 1);
        const bool isInTime = !limit.hasExpired();
        QVERIFY(Tone::signalServer("CONT"));
        QVERIFY(isBegun && isStopped && isSilenceRecorded && isInTime);
        QVERIFY(!failures.isEmpty());
        for (const QString &failure : failures)
            QVERIFY2(failure.startsWith("the sound system does not respond"), qPrintable(failure));
        for (const QString &file : QDir(voice).entryList(QDir::Files)) {
            WavHeader header;
            QVERIFY2(!SoundFile::exactSamples(voice + '/' + file, &header).isEmpty(), qPrintable(file));
        }
    }
}

QTEST_MAIN(VoiceTrackTest)
#include "tst_voice_track.moc"
