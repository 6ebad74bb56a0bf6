// Files after the process is killed or the disk is full.

#include "avcodec/DecodedVideo.h"
#include "avcodec/mp4/KelAsyncEncoder.h"
#include "avcodec/mp4/Mp4Index.h"
#include "avcodec/mp4/h264Encoder.h"
#include "avcodec/x264/X264Encoder.h"
#include "support/FileSizeLimit.h"
#include "support/TestTable.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <cstdio>

using namespace av;

namespace
{

constexpr int kFps = 30;
const QSize kSize(320, 180);

KelAsyncEncoder::Params params(const QString &path)
{
    return {kSize, QImage::Format_ARGB32_Premultiplied, path, kFps};
}

/// Records until the encoder fails or has accepted `count` frames. Returns how many it accepted.
int record(KelAsyncEncoder &encoder, int count)
{
    int taken = 0;
    while (taken < count && encoder.errorString().isEmpty())
        if (encoder.addFrame(taken, textImage(kSize, taken % 50)) == taken)
            ++taken;
    return taken;
}

/// Exports a video. Returns the error; empty if there was none.
QString exportVideo(const QString &path)
{
    h264Encoder encoder({kSize, QImage::Format_ARGB32_Premultiplied, path, kFps, 90});
    quint64 index = 0;
    while (index < 90 && encoder.addFrame(index, textImage(kSize, int(index))))
        ++index;
    return encoder.close() == encoder.errorString().isEmpty() ? encoder.errorString()
                                                              : QString("close() and errorString() disagree");
}

} // namespace

class FileSafetyTest : public QObject
{
    Q_OBJECT

private slots:
    void recordingSurvivesKill();
    void recordingSurvivesFullDisk_data();
    void recordingSurvivesFullDisk();
    void exportReportsFullDisk();
    void addressesLargeFiles();

private:
    QString path() const { return m_dir.filePath("video.mp4"); }

    QTemporaryDir m_dir;
};

void FileSafetyTest::recordingSurvivesKill()
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {"--record", path()});
    int taken = 0;
    while (taken < 100) {
        QVERIFY(child.canReadLine() || child.waitForReadyRead(30000));
        taken = child.readLine().toInt();
    }
    child.kill();
    QVERIFY(child.waitForFinished());
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);

    const DecodedVideo video(path());
    // The last fragment may be truncated, which the reader may report.
    QVERIFY2(int(video.frames.size()) >= taken - kFps, qPrintable(QString::number(video.frames.size())));
    for (int i = 0; i < int(video.frames.size()); i += 10)
        QVERIFY(psnr(video.rgbImage(i), textImage(kSize, i % 50)) >= 45);
}

void FileSafetyTest::recordingSurvivesFullDisk_data()
{
    constexpr int kCount = 60;
    KelAsyncEncoder encoder(params(path()));
    QCOMPARE(record(encoder, kCount), kCount);
    encoder.waitForClosed();
    // The finished file encloses the fragments in its second box, whose 64-bit size follows the type.
    QFile file(path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray begin = file.read(100);
    const int mediaData = begin.indexOf("mdat");
    const qint64 fragmentsEnd = mediaData - 4 + qFromBigEndian<qint64>(begin.constData() + mediaData + 4);

    const TestTable<qint64, int> row("limit", "frames"); // at least
    row("in the middle", fragmentsEnd / 2, 15);
    row("in the last fragment", fragmentsEnd - 1, kCount - 1);
    row("before the index", fragmentsEnd, kCount);
    row("in the index", fragmentsEnd + 100, kCount);
}

void FileSafetyTest::recordingSurvivesFullDisk()
{
    QFETCH(qint64, limit);
    QFETCH(int, frames);
    std::vector<QString> reports;
    {
        QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^\\[KelAsyncEncoder\\] Cannot write"));
        const FileSizeLimit fullDisk{quint64(limit)};
        KelAsyncEncoder encoder(params(path()));
        const auto report = [&reports](const QString &text) { reports.push_back(text); };
        encoder.setErrorHandler(report);
        const int taken = record(encoder, 60);
        QVERIFY(taken >= frames);
        encoder.waitForClosed();
        encoder.setErrorHandler(report); // only the first learns of it
        QCOMPARE(encoder.addFrame(taken, textImage(kSize, 0)), -1);
        QCOMPARE(reports, std::vector<QString>{encoder.errorString()});
        QVERIFY(reports[0].contains(path()));
    }
    const QList<QByteArray> boxes = mp4Boxes(path());
    QCOMPARE(boxes.mid(0, 5), QList<QByteArray>({"ftyp", "free", "moov", "moof", "mdat"}));
    QCOMPARE(boxes.last(), QByteArray("mdat"));
    const DecodedVideo video(path());
    QCOMPARE(video.errorString, QString());
    QVERIFY(int(video.frames.size()) >= frames);
}

void FileSafetyTest::exportReportsFullDisk()
{
    QVERIFY(exportVideo(path()).isEmpty());
    const quint64 size = quint64(QFileInfo(path()).size());
    for (const quint64 limit : {size / 2, size - 1}) { // in the middle, when the index moves to the front
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[h264Encoder\\] Cannot write"));
        const FileSizeLimit fullDisk{limit};
        QVERIFY(exportVideo(path()).contains(path()));
    }
}

void FileSafetyTest::addressesLargeFiles()
{
    // The frames are not parsed; the record only has to be well-formed.
    Mp4Index index({kSize, kFps, QByteArray::fromHex("014d401fffe1000400000000010004000000000000")});
    const QByteArray bytes(1000, 'x');
    const std::vector<qint64> offsets{1000, 0xfffff000, 0x100000001, 0x7fffffffff};
    for (std::size_t i = 0; i < offsets.size(); ++i)
        index.add({reinterpret_cast<const uint8_t *>(bytes.constData()), bytes.size(), qint64(i), qint64(i), i == 0},
                  offsets[i]);
    const QByteArray moov = index.finish();
    QCOMPARE(qint64(moov.size()), qint64(qFromBigEndian<quint32>(moov.constData())));
    const int table = moov.indexOf("co64");
    QVERIFY(table > 0);
    QCOMPARE(qFromBigEndian<quint32>(moov.constData() + table + 8), quint32(offsets.size()));
    for (std::size_t i = 0; i < offsets.size(); ++i)
        QCOMPARE(qFromBigEndian<qint64>(moov.constData() + table + 12 + 8 * i), offsets[i]);
}

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--record") {
        KelAsyncEncoder encoder(params(arguments.value(2)));
        for (int taken = 0;;) {
            if (encoder.addFrame(taken, textImage(kSize, taken % 50)) != taken)
                continue;
            std::printf("%d\n", ++taken);
            std::fflush(stdout);
        }
    }
    FileSafetyTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_file_safety.moc"
