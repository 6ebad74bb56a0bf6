// Records what a sound server plays during playback.

#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/ScriptedDecoder.h"
#include "support/LogCapture.h"
#include "support/Sound.h"

#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QProcess>
#include <QtMath>
#include <QtTest>

using namespace kel;

namespace
{

constexpr int kRate = 48'000;
constexpr int kWaitMs = 30'000;

/// Listens to what the speakers play.
class Listener
{
public:
    Listener()
    {
        m_recorder.start("parec", {"-d", "speakers.monitor", "--raw", "--format=s16le", "--channels=1", "--rate=48000",
                                   "--latency-msec=10"});
    }
    ~Listener()
    {
        m_recorder.kill();
        m_recorder.waitForFinished();
    }

    /// Whether the last 200 ms are this tone, or silence at 0 Hz.
    bool hears(double hertz)
    {
        m_bytes = (m_bytes + m_recorder.readAllStandardOutput()).right(kRate / 5 * 2);
        Sound sound{kRate, 1, {}};
        for (int i = 0; i + 1 < m_bytes.size(); i += 2)
            sound.samples.push_back(float(qFromLittleEndian<qint16>(m_bytes.constData() + i)) / 32768);
        const bool isWhole = m_bytes.size() == kRate / 5 * 2;
        return isWhole && (hertz > 0 ? sound.level(hertz, 0, 1) > 0.4 : sound.peak() == 0);
    }

private:
    QProcess m_recorder;
    QByteArray m_bytes;
};

} // namespace

class PlaybackSoundTest : public QObject
{
    Q_OBJECT

private slots:
    void plays();
    void serverEnds();

private:
    std::unique_ptr<KelPlaybackTrackManager> load()
    {
        const Sound sound = Sound::make(
            60, [](double t) { return 0.5 * std::sin(2 * M_PI * (t < 30 ? 400 : 1000) * t); }, 44'100,
            1); // the device has another rate
        recording.frames(60 * 25).sound("system_audio_1.wav", sound.wav(false));
        KelPlaybackDependencies dependencies = KelPlaybackDependencies::real();
        dependencies.decoders = scriptedDecoders(std::make_shared<DecoderScript>());
        return PlaybackInternals::load(recording.path(), dependencies);
    }

    RecordingOnDisk recording;
};

void PlaybackSoundTest::plays()
{
    const auto manager = load();
    KelPlaybackVoiceTrack *const voice = PlaybackInternals::engine(*manager).voiceTrack();
    struct Step {
        std::function<void()> action;
        double hertz;
    };
    const Step steps[] = {
        {[] {}, 0},
        {[&] { manager->play(); }, 400},
        {[&] { manager->setSpeed(2.0); }, 800},
        {[&] { manager->seek(35 * 25); }, 2000},
        {[&] { manager->setSpeed(1.0); }, 1000},
        {[&] { manager->pause(); }, 0},
        {[&] { manager->seek(10 * 25), manager->play(); }, 400},
        {[&] { voice->setSystemAudioMuted(true); }, 0},
        {[&] { voice->setSystemAudioMuted(false); }, 400},
        {[&] { manager->stop(); }, 0},
    };
    Listener listener;
    for (const Step &step : steps) {
        step.action();
        QTRY_VERIFY_WITH_TIMEOUT(listener.hears(step.hertz), kWaitMs);
    }
}

/// Must be the last test, as it ends the server.
void PlaybackSoundTest::serverEnds()
{
    const auto manager = load();
    manager->play();
    Listener listener;
    QTRY_VERIFY_WITH_TIMEOUT(listener.hears(400), kWaitMs);
    LogCapture log;
    // Playback goes on meanwhile: held up, it would start the device again, and Qt waits forever for a stream that
    // ends while it is created.
    QVERIFY(QProcess::startDetached("sh", {"-c", "kill $SOUND_SERVER_PID"}));
    QStringList warnings;
    const auto logged = [&] { return warnings += log.take().filter("[KelAmplifiedAudioPlayer]"); };
    QTRY_COMPARE_WITH_TIMEOUT(logged(), QStringList{"W [KelAmplifiedAudioPlayer] Audio output error: 4"}, kWaitMs);
    const int frame = manager->currentFrame();
    QTRY_VERIFY_WITH_TIMEOUT(manager->currentFrame() > frame + 5, kWaitMs);
    manager->pause();
    manager->play();
    manager->seek(700);
    QTRY_VERIFY_WITH_TIMEOUT(manager->currentFrame() > 705, kWaitMs);
    QCOMPARE(logged().size(), 2);
    QCOMPARE(warnings.last(), QString("W [KelAmplifiedAudioPlayer] Failed to start audio output device"));
}

QTEST_MAIN(PlaybackSoundTest)
#include "tst_playback_sound.moc"
