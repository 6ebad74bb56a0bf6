#include "kelmovie/support/SoundFile.h"
#include "recording/wav/WavPartWriter.h"
#include "support/TestTable.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

using namespace kel;

namespace
{
constexpr int kRate = 1000; // a sample a millisecond
constexpr int kPacketMs = 40;
constexpr qint64 kStartMs = 500'000;
} // namespace

class WavPartWriterTest : public QObject
{
    Q_OBJECT

private slots:
    void followsTheClock_data();
    void followsTheClock();
};

void WavPartWriterTest::followsTheClock_data()
{
    const TestTable<double, int, int, int> row("rate", "jumpMs", "cuts", "gaps");
    row("exact", 1.0, 0, 0, 0);
    row("fast device", 1.0005, 0, 0, 0);
    row("slow device", 0.9995, 0, 0, 0);
    row("jitter", 1.0, 15, 0, 0);
    row("sound is missing", 1.0, 3000, 0, 1);
    row("more sound than time", 1.0, -3000, 1, 0);
}

/// A device numbers its samples. `rate` is the speed of its clock; after 100 s, it states times that differ by
/// `jumpMs`. In the file, each sample is where the clock had it. Deviations are corrected by single samples, in `cuts`
/// or `gaps`.
void WavPartWriterTest::followsTheClock()
{
    QFETCH(double, rate);
    QFETCH(int, jumpMs);
    QFETCH(int, cuts);
    QFETCH(int, gaps);
    constexpr int kSamples = 200 * kRate;
    const QTemporaryDir directory;
    WavHeader format = WavHeader::pcm(kRate, 1, 32);
    format.formatTag = WavHeader::kIeeeFloat;
    WavPartWriter writer(format);
    QVERIFY(writer.open(directory.filePath("part.wav"), kStartMs));
    const auto timeOf = [&](int sample) { return sample / rate + (sample >= kSamples / 2 ? jumpMs : 0); };
    for (int first = 0; first < kSamples; first += kPacketMs) {
        QVector<float> packet;
        for (int i = 0; i < kPacketMs; ++i)
            packet << float(first + i + 1);
        writer.writePacket(reinterpret_cast<const char *>(packet.constData()), packet.size() * qint64(sizeof(float)),
                           kStartMs + std::lround(timeOf(first)));
    }
    writer.close();

    WavHeader header;
    const QVector<float> sound = SoundFile::exactSamples(directory.filePath("part.wav"), &header);
    int foundCuts = 0;
    int foundGaps = 0;
    for (int at = 1; at < sound.size(); ++at) {
        const int sample = int(sound[at]) - 1;
        const int before = int(sound[at - 1]) - 1;
        foundGaps += sample < 0 && before >= 0 ? 1 : 0;
        foundCuts += before >= 0 && sample > before + 2 ? 1 : 0;
        if (sample >= 0)
            QVERIFY2(std::abs(timeOf(sample) - at) <= 20, qPrintable(QString("%1 at %2").arg(sample).arg(at)));
    }
    QCOMPARE(foundGaps, gaps);
    QCOMPARE(foundCuts, cuts);
}

QTEST_GUILESS_MAIN(WavPartWriterTest)
#include "tst_wav_part_writer.moc"
