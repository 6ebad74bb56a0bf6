#include "audio/capture/KelSystemAudioRecord.h"
#include "kelmovie/support/SoundFile.h"
#include "support/HostProgram.h"
#include "support/Sound.h"

#include <QTemporaryDir>
#include <QtTest>

#include <mutex>

using namespace kel;

namespace
{
constexpr int Rate = 48000;
constexpr double ToneHz = 1000;
constexpr double ToneSeconds = 2;
constexpr double WindowSeconds = 0.1;
} // namespace

/// The capture of system audio with the Core Audio of the system itself, real devices and real time.
class CaptureEndpointTest : public QObject
{
    Q_OBJECT

private slots:
    void hearsTheOutput() { hears(eRender, "speakers"); }
    void hearsAnInput() { hears(eCapture, "microphone"); }

private:
    static void hears(EDataFlow flow, const QString &sink);
};

/// A tone that is played into the sink is recorded, as long as it was.
void CaptureEndpointTest::hears(EDataFlow flow, const QString &sink)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath("system_audio.wav");
    CaptureDependencies seams;
    seams.flow = flow;
    std::mutex mutex;
    QStringList failures;
    KelSystemAudioRecord record(
        path,
        [&](const QString &problem) {
            const std::lock_guard lock(mutex);
            failures << problem;
        },
        nullptr, seams);
    QVERIFY(record.start());
    const QByteArray tone = Sound::make(ToneSeconds, Sound::tone(ToneHz, 0.5), Rate).pcm16();
    const QStringList arguments{"--device=" + sink, "--format=s16le", QString("--rate=%1").arg(Rate), "--channels=2"};
    QVERIFY(HostProgram::run("pacat", arguments, tone).succeeded);
    record.stopRecording();
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join("; ")));

    WavHeader header;
    const QVector<float> samples = SoundFile::exactSamples(path, &header);
    const Sound sound{int(header.sampleRate), 1, {samples.begin(), samples.end()}};
    double heard = 0;
    for (double from = 0; from + WindowSeconds < samples.size() / double(header.sampleRate); from += WindowSeconds) {
        if (sound.level(ToneHz, from, from + WindowSeconds) > 0.4)
            heard += WindowSeconds;
    }
    QVERIFY2(std::abs(heard - ToneSeconds) < 0.4, qPrintable(QString("%1 s").arg(heard)));
}

QTEST_GUILESS_MAIN(CaptureEndpointTest)
#include "tst_capture_endpoint.moc"
