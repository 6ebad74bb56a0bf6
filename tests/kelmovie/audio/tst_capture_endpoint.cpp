#include "audio/capture/KelSystemAudioRecord.h"
#include "audio/capture/MicrophoneRecord.h"
#include "kelmovie/support/SoundFile.h"
#include "support/HostProgram.h"
#include "support/Sound.h"

#include <QAudioEncoderSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace kel;

namespace
{
constexpr int kRate = 48000;
constexpr double kToneHz = 1000;
constexpr double kToneSeconds = 2;
constexpr double kWindowSeconds = 0.1;
} // namespace

/// Captures sound through the Core Audio interfaces of the system, from real devices in real time.
class CaptureEndpointTest : public QObject
{
    Q_OBJECT

private slots:
    void recordsTheOutput() { records(eRender, "speakers"); }
    void recordsAnInput() { records(eCapture, "microphone"); }

private:
    static void records(EDataFlow flow, const QString &sink);
};

/// A tone played into the sink is recorded with its full duration.
void CaptureEndpointTest::records(EDataFlow flow, const QString &sink)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath("system_audio.wav");
    QStringList failures;
    const auto fail = [&](const QString &problem) { failures << problem; };
    QAudioEncoderSettings settings;
    settings.setSampleRate(44100);
    settings.setChannelCount(2);
    std::unique_ptr<SoundRecorder> record;
    if (flow == eCapture)
        record = std::make_unique<MicrophoneRecord>(settings, path, fail, nullptr);
    else
        record = std::make_unique<KelSystemAudioRecord>(path, fail, nullptr);
    QVERIFY(record->start());
    const QByteArray tone = Sound::make(kToneSeconds, Sound::tone(kToneHz, 0.5), kRate).pcm16();
    const QStringList arguments{"--device=" + sink, "--format=s16le", QString("--rate=%1").arg(kRate), "--channels=2"};
    QVERIFY(HostProgram::run("pacat", arguments, tone).succeeded);
    record->stopRecording();
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join("; ")));

    WavHeader header;
    const QVector<float> samples = SoundFile::exactSamples(path, &header);
    const Sound sound{int(header.sampleRate), 1, {samples.begin(), samples.end()}};
    double heard = 0;
    for (double from = 0; from + kWindowSeconds < samples.size() / double(header.sampleRate); from += kWindowSeconds) {
        if (sound.level(kToneHz, from, from + kWindowSeconds) > 0.4)
            heard += kWindowSeconds;
    }
    QVERIFY2(std::abs(heard - kToneSeconds) < 0.4, qPrintable(QString("%1 s").arg(heard)));
}

QTEST_GUILESS_MAIN(CaptureEndpointTest)
#include "tst_capture_endpoint.moc"
