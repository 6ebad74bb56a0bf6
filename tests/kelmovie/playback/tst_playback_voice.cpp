#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/ScriptedAudioSink.h"
#include "kelmovie/support/ScriptedDecoder.h"
#include "kelmovie/support/SoundFile.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"

#include "audio/output/KelAmplifiedAudioPlayer.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QFileDevice>
#include <QTimer>
#include <QTimerEvent>
#include <QtTest>

using namespace kel;

namespace
{

constexpr int kRate = 4000;
constexpr int kTickMs = 20;

} // namespace

class PlaybackVoiceTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void staysInSync_data();
    void staysInSync();
    void seeks();
    void twoSources();
    void appliesSettingsAtOnce();
    void withoutDevice();
    void endsWhilePlaying();
    void findsFiles_data();
    void findsFiles();

private:
    void record(int frames, int fps, int soundMs)
    {
        recording = std::make_unique<RecordingOnDisk>();
        recording->frames(frames, fps)
            .set(&KelRecordingMetadata::durationMs, qint64(soundMs))
            .set(&KelRecordingMetadata::systemAudio, true);
    }
    void addSound(const QString &name, int ms)
    {
        recording->sound(name, SoundFile::numbered(kRate, int(qint64(kRate) * ms / 1000)));
    }
    std::unique_ptr<KelPlaybackTrackManager> load()
    {
        KelPlaybackDependencies dependencies;
        dependencies.nowMs = sound->nowMs;
        dependencies.decoders = scriptedDecoders(decoders);
        dependencies.createAudioSink = scriptedSinks(sound);
        return PlaybackInternals::load(recording->path(), dependencies);
    }
    static KelPlaybackVoiceTrack *voiceTrack(const KelPlaybackTrackManager &manager)
    {
        return PlaybackInternals::engine(manager).voiceTrack();
    }
    static QList<KelAmplifiedAudioPlayer *> players(const KelPlaybackTrackManager &manager)
    {
        return voiceTrack(manager)->findChildren<KelAmplifiedAudioPlayer *>();
    }
    /// Lets time pass for the device, the players and the manager.
    void tick(KelPlaybackTrackManager &manager)
    {
        nowMs += kTickMs;
        for (KelAmplifiedAudioPlayer *player : players(manager))
            player->processAudioData();
        QTimerEvent expired(manager.findChild<QTimer *>()->timerId());
        QCoreApplication::sendEvent(manager.findChild<QTimer *>(), &expired);
    }
    void pass(KelPlaybackTrackManager &manager, int ms)
    {
        for (; ms > 0; ms -= kTickMs)
            tick(manager);
    }
    double heardMs() const
    {
        const int last = std::min(sound->last->heard(), sound->last->written().size() - 4);
        return SoundFile::numberAt(sound->last->written(), last) * 1000.0 / kRate;
    }

    std::shared_ptr<SoundScript> sound;
    std::shared_ptr<DecoderScript> decoders;
    std::unique_ptr<RecordingOnDisk> recording;
    qint64 nowMs = 0;
};

void PlaybackVoiceTest::init()
{
    nowMs = 1'700'000'000'000;
    gKelMovieConfig = KelMovieConfig();
    sound = std::make_shared<SoundScript>();
    sound->nowMs = [this] { return nowMs; };
    decoders = std::make_shared<DecoderScript>();
}

void PlaybackVoiceTest::staysInSync_data()
{
    // tickMs: of the recording clock. lostMs: of sound, in the middle.
    const TestTable<int, int, double, double, int, int, int> row("fps", "tickMs", "speed", "pace", "leadMs", "lostMs",
                                                                 "maxStarts");

    row("same clocks", 25, 40, 1.0, 1.0, 0, 0, 1);
    row("recorded with faster ticks", 60, 16, 1.0, 1.0, 0, 0, 1);
    row("default rate", 24, 41, 1.0, 1.0, 20, 0, 1);
    row("fast device", 25, 40, 1.0, 1.002, 0, 0, 1);
    row("slow device, fast ticks", 60, 16, 1.0, 0.998, 100, 0, 1);
    row("device with a lead", 25, 40, 1.0, 1.0, 150, 0, 1);
    row("short gap", 25, 40, 1.0, 1.0, 30, 100, 1);
    row("long gap", 25, 40, 1.0, 1.0, 0, 1000, 2);
    row("double speed", 25, 40, 2.0, 1.001, 0, 0, 1);
    row("half speed", 24, 41, 0.5, 0.999, 50, 0, 1);
}

void PlaybackVoiceTest::staysInSync()
{
    QFETCH(int, fps);
    QFETCH(int, tickMs);
    QFETCH(double, speed);
    QFETCH(double, pace);
    QFETCH(int, leadMs);
    QFETCH(int, lostMs);
    QFETCH(int, maxStarts);

    constexpr int soundMs = 600'000;
    constexpr int settlingMs = 8000;
    const int frames = soundMs / tickMs;
    record(frames, fps, soundMs);
    addSound("system_audio_1.wav", soundMs);
    sound->pace = pace;
    sound->leadMs = leadMs;
    const auto manager = load();
    manager->setSpeed(speed);
    manager->play();
    const qint64 begin = nowMs;
    const auto end = qint64(frames * 1000.0 / fps / speed);
    qint64 lostAt = 0;
    double worst = 0;
    while (nowMs - begin < end - 1000) {
        tick(*manager);
        if (lostMs && !lostAt && nowMs - begin > end / 2) {
            sound->last->lose(lostMs);
            lostAt = nowMs;
        }
        const double expectedMs = double(nowMs - begin) / 1000 * fps * speed / frames * soundMs;
        if (nowMs - lostAt > settlingMs)
            worst = std::max(worst, std::abs(heardMs() - expectedMs) / speed);
    }
    QVERIFY2(worst < 44, qPrintable(QString("%1 ms apart").arg(worst)));
    QVERIFY2(sound->starts <= maxStarts, qPrintable(QString::number(sound->starts)));
    pass(*manager, 1100);
    QCOMPARE(manager->state(), KelPlaybackTrackManager::Stopped);
    QVERIFY(!players(*manager).first()->isPlaying());
}

void PlaybackVoiceTest::seeks()
{
    record(2500, 50, 40'000); // a clock that ticked at 62.5
    addSound("system_audio_1.wav", 40'000);
    const auto manager = load();
    KelPlaybackVoiceTrack *track = voiceTrack(*manager);
    const KelAmplifiedAudioPlayer *player = players(*manager).first();
    QCOMPARE(manager->trackNames(), (QStringList{"ScreenTrack", "VoiceTrack"}));
    manager->seek(625);
    QCOMPARE(player->position(), qint64(10'000));
    QCOMPARE(sound->alive, 0); // seeking alone opens no device
    PlaybackInternals::engine(*manager).setFrameSilently(1250);
    QCOMPARE(player->position(), qint64(10'000));

    manager->play();
    QCOMPARE(heardMs(), 20'000.0);
    pass(*manager, 1000);
    manager->seek(manager->currentFrame() + 2); // continues undisturbed
    QCOMPARE(sound->starts, 1);
    manager->seek(625);
    QCOMPARE(sound->starts, 2);
    QCOMPARE(heardMs(), 10'000.0);
    manager->pause();
    nowMs += 60'000;
    manager->seek(1875);
    QVERIFY(!player->isPlaying());
    manager->play();
    QCOMPARE(heardMs(), 30'000.0);
    manager->setSpeed(2.0); // drops what was buffered at the old speed
    pass(*manager, 100);
    QVERIFY(std::abs(heardMs() - 30'160) < 5);
    manager->stop();
    QCOMPARE(player->position(), qint64(0));

    for (const auto &[ms, position] : {std::pair(49, 0), {50, 50}, {99, 50}, {0, 0}}) {
        track->seekToMs(ms);
        QCOMPARE(player->position(), qint64(position));
    }
    track->seekToFrame(100); // of 40 ms, whatever the recording's rate
    QCOMPARE(player->position(), qint64(4000));
    QCOMPARE(track->nextKeyFrame(), 121);
    track->release();
    track->seekToMs(5000);
    track->play(5000, 1.0);
    QCOMPARE(sound->alive, 0);
}

void PlaybackVoiceTest::twoSources()
{
    record(500, 25, 20'000);
    addSound("system_audio_1.wav", 4000); // ended early
    addSound("microphone_1.wav", 20'000);
    const auto manager = load();
    const auto both = players(*manager);
    QCOMPARE(both.size(), 2);
    manager->play();
    QVERIFY(both[0]->isPlaying() && both[1]->isPlaying());
    QCOMPARE(voiceTrack(*manager)->nextKeyFrame(), 1);
    // The system audio is the master.
    for (const auto &[rate, aheadMs, follows] :
         {std::tuple(1.0, 99, false), {1.0, 101, true}, {2.0, 199, false}, {2.0, -201, true}, {0.5, 101, true}}) {
        manager->setSpeed(rate);
        manager->seek(50);
        both[1]->seek(2000 + aheadMs);
        voiceTrack(*manager)->onSystemAudioPositionChanged(2000);
        QCOMPARE(both[1]->position(), qint64(follows ? 2000 : 2000 + aheadMs));
        manager->seek(25);
    }
    manager->setSpeed(1.0);
    manager->seek(125);
    QVERIFY(!both[0]->isPlaying() && both[1]->isPlaying());
    pass(*manager, 2000);
    QVERIFY(!both[0]->isPlaying());
    QCOMPARE(both[1]->position(), qint64(7000));
    manager->seek(25);
    QVERIFY(both[0]->isPlaying() && both[1]->isPlaying());
    manager->pause();
    QVERIFY(!both[0]->isPlaying() && !both[1]->isPlaying());
}

void PlaybackVoiceTest::appliesSettingsAtOnce()
{
    record(500, 25, 20'000);
    recording->sound("system_audio_1.wav", SoundFile::wav(kRate, 16, QByteArray("\0\x10", 2).repeated(kRate * 20)));
    const auto manager = load();
    const KelAmplifiedAudioPlayer *player = players(*manager).first();
    QVERIFY(voiceTrack(*manager)->hasSystemAudio() && !voiceTrack(*manager)->hasMicrophone());
    const auto written = [&] {
        manager->seek(manager->currentFrame(), true);
        manager->seek(manager->currentFrame() < 250 ? 300 : 100);
        return int(qFromLittleEndian<qint16>(sound->last->written().constData()));
    };
    manager->play();
    QCOMPARE(written(), 4096);
    gKelMovieConfig.playbackAudioSystemVolume = 50;
    gKelMovieConfig.playbackAudioSystemGain = 400;
    manager->updateSettings();
    written();
    QVERIFY(std::abs(written() - 8192) < 40);
    QCOMPARE(voiceTrack(*manager)->audibleSystemAudioGain(), 2.0);
    gKelMovieConfig.playbackAudioSystemMuted = true;
    manager->updateSettings();
    QCOMPARE(sound->volume, 0.0);
    QCOMPARE(written(), 0);
    gKelMovieConfig.playbackAudioSystemEnabled = false;
    manager->updateSettings();
    QVERIFY(!player->isPlaying());
    pass(*manager, 1000);
    QVERIFY(!player->isPlaying());
    gKelMovieConfig.playbackAudioSystemEnabled = true;
    manager->updateSettings();
    tick(*manager);
    QVERIFY(player->isPlaying());
    QVERIFY(std::abs(player->position() - manager->currentFrame() * 40) <= 40);
}

void PlaybackVoiceTest::withoutDevice()
{
    record(500, 25, 20'000);
    addSound("system_audio_1.wav", 20'000);
    addSound("microphone_1.wav", 20'000);
    sound->isMissing = true;
    LogCapture log;
    const auto manager = load();
    QSignalSpy failures(manager.get(), &KelPlaybackTrackManager::sigSoundDeviceFailed);
    manager->play();
    pass(*manager, 2000);
    manager->seek(200);
    manager->pause();
    manager->play();
    pass(*manager, 1000);
    QCOMPARE(manager->currentFrame(), 225);
    QCOMPARE(log.take(), QStringList{"W [KelAmplifiedAudioPlayer] Failed to start audio output device"});
    QCOMPARE(failures.size(), 1);

    manager->pause();
    sound->isMissing = false;
    manager->play();
    QCOMPARE(sound->alive, 2);
    pass(*manager, 100);
    sound->isMissing = true;
    sound->last->fail(QAudio::FatalError);
    pass(*manager, 1000);
    QCOMPARE(manager->state(), KelPlaybackTrackManager::Playing);
    QCOMPARE(log.take(), QStringList{"W [KelAmplifiedAudioPlayer] Audio output error: 4"});
    QCOMPARE(failures.size(), 2);
}

/// A device may process events while it closes.
void PlaybackVoiceTest::endsWhilePlaying()
{
    record(100, 25, 4000);
    addSound("system_audio_1.wav", 4000);
    auto manager = load();
    manager->play();
    pass(*manager, 500);
    const QTimer *const timer = manager->findChild<QTimer *>();
    QVERIFY(timer->isActive());
    int closed = 0;
    sound->closing = [&] { closed += timer->isActive() ? 0 : 1; };
    manager.reset();
    QCOMPARE(closed, 1);
}

void PlaybackVoiceTest::findsFiles_data()
{
    // Oldest first, each one second longer than the one before. The duration is 0 ms without a player.
    const TestTable<QStringList, qint64, QStringList> row("names", "durationMs", "messages");

    row("newest", {"system_audio_2.wav", "system_audio_1.wav"}, 2000, {});
    row("never joined", {"system_audio_1_part0.wav", "system_audio_1_part1.wav"}, 3000, {});
    row("none", {"sound.wav"}, 0, {"W [KelPlaybackVoiceTrack] No audio WAV files found in: "});
    row("broken", {"system_audio_bad.wav"}, 0,
        {"W [KelAmplifiedAudioPlayer] Invalid WAV file: RIFF header not found",
         "W Failed to load system audio: Invalid WAV file: RIFF header not found"});
}

void PlaybackVoiceTest::findsFiles()
{
    QFETCH(QStringList, names);
    QFETCH(qint64, durationMs);
    QFETCH(QStringList, messages);

    record(100, 25, 4000);
    for (int i = 0; i < names.size(); ++i) {
        if (names[i].contains("bad"))
            recording->sound(names[i], "no sound");
        else
            addSound(names[i], (i + 1) * 1000);
        QFile file(recording->path() + "/Voice/" + names[i]);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(i - 100), QFileDevice::FileModificationTime));
    }
    LogCapture log;
    const auto manager = load();
    const QStringList lines = log.take();
    QCOMPARE(lines.size(), messages.size());
    for (int i = 0; i < lines.size(); ++i)
        QVERIFY2(lines[i].startsWith(messages[i]), qPrintable(lines[i]));
    QCOMPARE(voiceTrack(*manager)->hasSystemAudio(), durationMs > 0);
    if (durationMs > 0)
        QCOMPARE(players(*manager).first()->duration(), durationMs);
    manager->play(); // possibly without sound
    pass(*manager, 200);
    QCOMPARE(manager->currentFrame(), 5);
}

QTEST_MAIN(PlaybackVoiceTest)
#include "tst_playback_voice.moc"
