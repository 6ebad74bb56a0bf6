#include "audio/MicrophoneBackend.h"
#include "audio/WavHeader.h"
#include "record/KelMultiTrackRecorder.h"
#include "record/KelRecordVoiceTrack.h"
#include "support/LogCapture.h"
#include "support/Sound.h"
#include "support/Tone.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cstring>
#include <mutex>
#include <tuple>

namespace
{
constexpr double SpeakersHz = 1000;
constexpr double MicrophoneHz = 440;

/// The first channel of a WAV file whose header describes it exactly; empty for any other.
QVector<float> sound(const QString &path, int *rate)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    if (bytes.size() < WavHeader::Size || !WavHeader::isRiffWave(bytes.constData()))
        return {};
    const WavHeader header = WavHeader::fromBytes(bytes.constData());
    if (header.dataSize != quint32(bytes.size() - WavHeader::Size) || header.riffSize != header.dataSize + 36)
        return {};
    *rate = int(header.sampleRate);
    QVector<float> samples;
    for (int at = WavHeader::Size; at < bytes.size(); at += header.blockAlign) {
        if (header.formatTag == WavHeader::IeeeFloat) {
            float value = 0;
            std::memcpy(&value, bytes.constData() + at, sizeof value);
            samples.append(value);
        } else {
            samples.append(qFromLittleEndian<qint16>(bytes.constData() + at) / 32768.0F);
        }
    }
    return samples;
}

/// The one file that is not a part.
QString wholeFile(const QString &directory, const QString &pattern)
{
    QStringList files = QDir(directory).entryList({pattern}, QDir::Files);
    const QStringList parts = files.filter("_part");
    for (const QString &part : parts)
        files.removeOne(part);
    return files.size() == 1 ? directory + '/' + files.first() : directory;
}

/// Lets the recording go on for so long.
void record(int ms)
{
    QTest::qWait(ms);
}
} // namespace

class tst_voice_track : public QObject
{
    Q_OBJECT

private slots:
    void recordsBothAcrossPauses();
    void startsAndStopsAgainAndAgain();
    void neitherSource();
    void knowsSilence();
    void goesOnWithoutSound_data();
    void goesOnWithoutSound();
};

/// The tones play all the time: of each source there is one file, with its tone only, as long as the recording.
void tst_voice_track::recordsBothAcrossPauses()
{
    const QTemporaryDir directory;
    const Tone::Player speakers("speakers", SpeakersHz, 60000);
    const Tone::Player microphone("microphone", MicrophoneHz, 60000);
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
    QVERIFY(recorder.startRecording());
    record(900);
    for (int pauses = 0; pauses < 2; ++pauses) {
        recorder.pauseRecording();
        record(400);
        QVERIFY(recorder.startRecording());
        record(700);
    }
    recorder.stopRecording();
    QVERIFY2(errors.isEmpty(), qPrintable(errors.value(0).value(0).toString()));

    QFile meta(config.outputDir + "/TrackManager.meta");
    QVERIFY(meta.open(QIODevice::ReadOnly));
    const int durationMs = QJsonDocument::fromJson(meta.readAll()).object().value("duration").toInt();
    QVERIFY(durationMs >= 2300);
    const QString voice = config.outputDir + "/Voice";
    QCOMPARE(QDir(voice).entryList(QDir::Files).size(), 2);
    for (const auto &[pattern, hz, otherHz] : {std::tuple{"system_audio_*.wav", SpeakersHz, MicrophoneHz},
                                               std::tuple{"microphone_*.wav", MicrophoneHz, SpeakersHz}}) {
        int rate = 1;
        const QVector<float> samples = sound(wholeFile(voice, pattern), &rate);
        const qint64 lengthMs = qint64(samples.size()) * 1000 / rate;
        QVERIFY2(qAbs(lengthMs - durationMs) < 100,
                 qPrintable(QString("%1: %2 of %3 ms").arg(pattern).arg(lengthMs).arg(durationMs)));
        int heard = 0;
        const int window = rate / 20;
        for (int at = 0; at + window <= samples.size(); at += window) {
            const QVector<float> part = samples.mid(at, window);
            heard += Tone::level(part, hz, rate) > 0.4 ? 1 : 0;
            QVERIFY2(Tone::level(part, otherHz, rate) < 0.1, "sound of the other source");
        }
        // Each stretch may miss its tone for a moment: a device takes a while to begin.
        QVERIFY2(heard * 50 > durationMs / 2,
                 qPrintable(QString("%1: %2 of %3 ms of tone").arg(pattern).arg(heard * 50).arg(durationMs)));
    }
}

void tst_voice_track::startsAndStopsAgainAndAgain()
{
    const QTemporaryDir directory;
    for (int i = 0; i < 5; ++i) {
        const QString voice = directory.filePath(QString::number(i));
        KelRecordVoiceTrack track(QRect(), voice);
        QStringList failures;
        track.setFailureHandler(
            [&](const QString &name, const QString &problem) { failures << name + ": " + problem; });
        track.setSystemAudioEnabled(true);
        track.setMicrophoneEnabled(true);
        track.startRecording();
        if (i % 2 == 0) // once in the same moment, once with events in between
            record(150);
        track.pauseRecording();
        track.startRecording();
        record(150);
        track.pauseRecording();
        track.startRecording();
        track.stopRecording(1, 1);
        QCOMPARE(failures, QStringList());
        for (const char *pattern : {"system_audio_*.wav", "microphone_*.wav"}) {
            int rate = 0;
            QVERIFY2(!sound(wholeFile(voice, pattern), &rate).isEmpty(), pattern);
        }
    }
}

void tst_voice_track::neitherSource()
{
    const QTemporaryDir directory;
    LogCapture logged;
    KelRecordVoiceTrack track(QRect(), directory.filePath("Voice"));
    track.startRecording();
    track.pauseRecording();
    track.startRecording();
    track.stopRecording(24, 1000);
    const QStringList lines = logged.take();
    QVERIFY(lines.contains("W [VoiceTrack] Cannot resume system audio - enabled: false recorder: false"));
    QVERIFY(lines.contains("I [VoiceTrack] Stopping recording, frames: 24 , duration: 1000"));
    QVERIFY(lines.contains("W [KelRecordVoiceTrack] 麦克风分段文件数量: 0"));
    QVERIFY(QDir(directory.filePath("Voice")).exists());
    QVERIFY(QDir(directory.filePath("Voice")).isEmpty());
}

void tst_voice_track::knowsSilence()
{
    const QTemporaryDir directory;
    const QString path = directory.filePath("sound.wav");
    QVERIFY(!MicrophoneBackend::isSilent(path));
    QVERIFY(Sound::make(0.0, Sound::tone(440, 1.0)).save(path, false) && !MicrophoneBackend::isSilent(path));
    QVERIFY(Sound::make(3.0, Sound::tone(440, 0.0)).save(path, false) && MicrophoneBackend::isSilent(path));
    QVERIFY(Sound::make(3.0, Sound::tone(440, 0.1, 2.9)).save(path, false) && !MicrophoneBackend::isSilent(path));
}

void tst_voice_track::goesOnWithoutSound_data()
{
    QTest::addColumn<bool>("hasServer");
    QTest::addColumn<bool>("microphone");
    QTest::addColumn<QString>("said");
    QTest::newRow("no server") << false << false << "System audio track: ";
    QTest::newRow("no microphone") << true << true << "Microphone track: there is no microphone";
}

void tst_voice_track::goesOnWithoutSound()
{
    QFETCH(bool, hasServer);
    QFETCH(bool, microphone);
    QFETCH(QString, said);
    const QTemporaryDir directory;
    const QByteArray server = qgetenv("PULSE_SERVER");
    if (!hasServer)
        qputenv("PULSE_SERVER", "unix:/nonexistent/socket");
    else
        QVERIFY(Tone::control({"set-default-source", "speakers.monitor"}));
    std::mutex mutex;
    QStringList failures;
    {
        KelRecordVoiceTrack track(QRect(), directory.filePath("Voice"));
        track.setFailureHandler([&](const QString &name, const QString &problem) {
            const std::lock_guard lock(mutex);
            failures << name + ": " + problem;
        });
        track.setSystemAudioEnabled(!microphone);
        track.setMicrophoneEnabled(microphone);
        track.startRecording();
        record(100);
        track.stopRecording(1, 100);
    }
    qputenv("PULSE_SERVER", server);
    QVERIFY(Tone::control({"set-default-source", "microphone.monitor"}));
    QCOMPARE(failures.size(), 1);
    QVERIFY2(failures.first().startsWith(said), qPrintable(failures.first()));
    QVERIFY(QDir(directory.filePath("Voice")).isEmpty());
}

QTEST_MAIN(tst_voice_track)
#include "tst_voice_track.moc"
