#include "audio/capture/MicrophoneRecord.h"
#include "kelmovie/support/SoundFile.h"
#include "support/HostProgram.h"
#include "support/Sound.h"

#include <QAudioEncoderSettings>
#include <QTemporaryDir>
#include <QtTest>

using namespace kel;

/// Captures sound through the Core Audio interfaces of the system, from a real device in real time.
class CaptureEndpointTest : public QObject
{
    Q_OBJECT

private slots:
    void recordsAnInput();
};

/// A tone played into the sink is recorded with its full duration.
void CaptureEndpointTest::recordsAnInput()
{
    constexpr double toneHz = 1000, toneSeconds = 1, windowSeconds = 0.02;
    const QTemporaryDir directory;
    const QString path = directory.filePath("microphone.wav");
    QStringList failures;
    QAudioEncoderSettings settings;
    settings.setSampleRate(44100);
    settings.setChannelCount(2);
    MicrophoneRecord record(
        settings, path, [&](const QString &problem) { failures << problem; }, nullptr);
    QVERIFY(record.start());
    const Sound tone = Sound::make(toneSeconds, Sound::tone(toneHz, 0.5));
    const QStringList arguments{"--device=microphone", "--format=s16le", "--rate=48000", "--channels=2"};
    QVERIFY(HostProgram::run("pacat", arguments, tone.pcm16()).succeeded);
    record.stopRecording();
    QCOMPARE(failures, QStringList());

    WavHeader header;
    const QVector<float> samples = SoundFile::exactSamples(path, &header);
    QCOMPARE(header.toBytes().left(40).mid(8), WavHeader::pcm(44100, 2, 16).toBytes().left(40).mid(8));
    const Sound sound{int(header.sampleRate), 1, {samples.begin(), samples.end()}};
    double heard = 0;
    for (double from = 0; from < sound.seconds(); from += windowSeconds)
        heard += sound.level(toneHz, from, from + windowSeconds) / 0.5 * windowSeconds;
    QVERIFY2(std::abs(heard - toneSeconds) < 0.1, qPrintable(QString("%1 s").arg(heard)));
}

QTEST_GUILESS_MAIN(CaptureEndpointTest)
#include "tst_capture_endpoint.moc"
