// Records what a sound server plays during playback.

#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/ScriptedDecoder.h"
#include "support/LogCapture.h"
#include "support/Sound.h"
#include "support/Tone.h"

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

    bool isListening() { return !last().isEmpty(); }
    bool isSilent()
    {
        const QByteArray sound = last();
        return !sound.isEmpty() && sound.count('\0') == sound.size();
    }
    bool hears(double hertz)
    {
        const QByteArray sound = last();
        int crossings = 0;
        for (int i = 2; i < sound.size(); i += 2)
            crossings += (sampleAt(sound, i - 2) < 0) != (sampleAt(sound, i) < 0);
        return !sound.isEmpty() && std::abs(crossings / 2.0 * kRate / (sound.size() / 2) - hertz) < hertz / 20;
    }

private:
    /// The last 200 ms; empty until that much has been recorded.
    QByteArray last()
    {
        m_sound = (m_sound + m_recorder.readAllStandardOutput()).right(kBytes);
        return m_sound.size() == kBytes ? m_sound : QByteArray();
    }
    static int sampleAt(const QByteArray &sound, int offset)
    {
        return qFromLittleEndian<qint16>(sound.constData() + offset);
    }

    static constexpr int kBytes = kRate / 5 * 2;
    QProcess m_recorder;
    QByteArray m_sound;
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
    Listener listener;
    QTRY_VERIFY(listener.isListening());
    QVERIFY(listener.isSilent());
    manager->play();
    QTRY_VERIFY(listener.hears(400));
    manager->setSpeed(2.0);
    QTRY_VERIFY(listener.hears(800));
    manager->seek(35 * 25);
    QTRY_VERIFY(listener.hears(2000));
    manager->setSpeed(1.0);
    QTRY_VERIFY(listener.hears(1000));
    manager->pause();
    QTRY_VERIFY(listener.isSilent());
    manager->seek(10 * 25);
    manager->play();
    QTRY_VERIFY(listener.hears(400));
    PlaybackInternals::engine(*manager).voiceTrack()->setSystemAudioMuted(true);
    QTRY_VERIFY(listener.isSilent());
    PlaybackInternals::engine(*manager).voiceTrack()->setSystemAudioMuted(false);
    QTRY_VERIFY(listener.hears(400));
    manager->stop();
    QTRY_VERIFY(listener.isSilent());
}

/// Must be the last test, as it ends the server.
void PlaybackSoundTest::serverEnds()
{
    const auto manager = load();
    manager->play();
    Listener listener;
    QTRY_VERIFY(listener.hears(400));
    LogCapture log;
    QVERIFY(Tone::signalServer("TERM"));
    QStringList warnings;
    const auto logged = [&] { return warnings += log.take().filter("[KelAmplifiedAudioPlayer]"); };
    QTRY_COMPARE(logged(), QStringList{"W [KelAmplifiedAudioPlayer] Audio output error: 4"});
    const int frame = manager->currentFrame();
    QTRY_VERIFY(manager->currentFrame() > frame + 5);
    manager->pause();
    manager->play();
    manager->seek(700);
    QTRY_VERIFY(manager->currentFrame() > 705);
    QCOMPARE(logged().size(), 2);
    QCOMPARE(warnings.last(), QString("W [KelAmplifiedAudioPlayer] Failed to start audio output device"));
}

QTEST_MAIN(PlaybackSoundTest)
#include "tst_playback_sound.moc"
