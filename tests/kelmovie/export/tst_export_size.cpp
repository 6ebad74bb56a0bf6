#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/SavingConfigIO.h"
#include "support/Sound.h"
#include "support/TestTable.h"

#include "export/KelExportPipeline.h"
#include "export/estimate/ExportSizeEstimator.h"
#include "playback/KelPlaybackTrackManager.h"

#include <KelMovie/SaveQualityPanel.h>

#include <QEventLoop>
#include <QFileInfo>
#include <QLabel>
#include <QPainter>
#include <QRandomGenerator>
#include <QTimer>
#include <QtTest>

using namespace kel;

using Estimate = ExportSizeEstimator::Estimate;

namespace
{

constexpr int kFrames = 250;
constexpr int kFps = 25;
constexpr int kWaitMs = 120'000;
constexpr QSize kSize(96, 72);

/// A square that moves over a noisy background and changes its color.
QImage image(int frame)
{
    QImage result(kSize, QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::darkGray);
    QPainter painter(&result);
    QRandomGenerator random(7);
    for (int i = 0; i < 150; ++i)
        painter.fillRect(random.bounded(96), random.bounded(72), 5, 5, QColor::fromRgb(random.generate()));
    painter.fillRect(frame * 3 % 96, frame % 72, 20, 20, QColor::fromHsv(frame % 360, 200, 200));
    return result;
}

} // namespace

/// Compares estimates with the size of exported files.
class ExportSizeTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void matchesExportedFile_data();
    void matchesExportedFile();
    void restartsAndStops();
    void unusableRecording();
    void panel();

private:
    KelExportRequest request(int format = 0, int startMs = -1, int endMs = -1)
    {
        KelExportRequest request;
        request.format = format;
        request.playbackManager = manager.get();
        request.trimStartMs = startMs;
        request.trimEndMs = endMs;
        request.outputPath = output.filePath("file");
        return request;
    }

    /// The next `count` results, or all up to the final one: estimates, or none after a failure.
    static QVector<Estimate> estimates(ExportSizeEstimator &estimator, const KelExportRequest &wanted, int count = 1000)
    {
        QVector<Estimate> found;
        QEventLoop loop;
        connect(&estimator, &ExportSizeEstimator::sigEstimated, &loop, [&](const Estimate &one) {
            found << one;
            if (one.isFinal || found.size() == count)
                loop.quit();
        });
        connect(&estimator, &ExportSizeEstimator::sigFailed, &loop, &QEventLoop::quit);
        QTimer::singleShot(kWaitMs, &loop, &QEventLoop::quit);
        estimator.start(wanted);
        loop.exec();
        return found;
    }

    RecordingOnDisk recording;
    std::unique_ptr<KelPlaybackTrackManager> manager;
    QTemporaryDir output;
};

void ExportSizeTest::initTestCase()
{
    QRandomGenerator random(7);
    const auto noise = [&](double) { return random.generateDouble() - 0.5; };
    recording.size(kSize.width(), kSize.height())
        .frames(kFrames, kFps)
        .video(kFrames, image)
        .sound("microphone_20260101_101010.wav", Sound::make(kFrames / kFps, noise).wav());
    manager = std::make_unique<KelPlaybackTrackManager>(recording.path(), false);
    QVERIFY2(manager->isValidRecording(), qPrintable(manager->errorString()));
}

void ExportSizeTest::matchesExportedFile_data()
{
    const TestTable<int, int, int, double> row("format", "startMs", "endMs", "tolerance");
    row("MP4", 0, -1, -1, 0.15);
    row("GIF", 1, -1, -1, 0.15);
    row("APNG", 2, -1, -1, 0.15);
    row("WebP", 3, -1, -1, 0.15);
    row("all frames of a GIF", 1, 400, 2000, 0.0);
    row("all frames of an MP4", 0, 400, 2000, 0.05); // only the sound is estimated
}

void ExportSizeTest::matchesExportedFile()
{
    QFETCH(int, format);
    QFETCH(int, startMs);
    QFETCH(int, endMs);
    QFETCH(double, tolerance);

    manager->seek(17);
    const KelExportRequest wanted = request(format, startMs, endMs);
    ExportSizeEstimator estimator;
    const QVector<Estimate> found = estimates(estimator, wanted);
    QVERIFY(!found.isEmpty() && found.last().isFinal && !estimator.isRunning());
    QCOMPARE(manager->currentFrame(), 17);
    QVERIFY(KelExportPipeline(wanted).run());
    const double ratio = double(found.last().bytes) / double(QFileInfo(wanted.outputPath).size());
    QVERIFY2(std::abs(ratio - 1) <= tolerance, qPrintable(QString::number(ratio)));
    QCOMPARE(found.size() > 1, startMs < 0);
    QVERIFY2(startMs < 0 ? found.last().error >= 0.1 && found.last().error < 0.3 : found.last().error == 0,
             qPrintable(QString::number(found.last().error)));
}

void ExportSizeTest::restartsAndStops()
{
    ExportSizeEstimator estimator;
    const QVector<Estimate> lossless = estimates(estimator, request(2), 1);
    const QVector<Estimate> video = estimates(estimator, request(0), 1);
    QVERIFY(lossless.size() == 1 && video.size() == 1 && estimator.isRunning());
    QVERIFY(video[0].bytes != lossless[0].bytes);
    estimator.stop();
    QVERIFY(!estimator.isRunning());
    estimator.start(request(1));
} // destroyed while it works

void ExportSizeTest::unusableRecording()
{
    const RecordingOnDisk broken; // its video cannot be decoded
    KelPlaybackTrackManager loaded(broken.path(), false);
    KelExportRequest wanted = request();
    wanted.playbackManager = &loaded;
    ExportSizeEstimator estimator;
    QSignalSpy failures(&estimator, &ExportSizeEstimator::sigFailed);
    for (const double speed : {1.0, 0.0}) {
        wanted.speed = speed;
        failures.clear();
        QVERIFY(estimates(estimator, wanted).isEmpty());
        QVERIFY(failures.size() == 1 && !failures[0][0].toString().isEmpty());
        wanted.playbackManager = manager.get();
    }
}

void ExportSizeTest::panel()
{
    const SavingConfigIO io;
    SaveQualityPanel panel;
    auto *const size = panel.findChild<QLabel *>("Note");
    panel.show();
    QVERIFY(size->text().isEmpty());
    panel.setPlaybackManager(manager.get());
    panel.setRange(400, 1400);
    const QRegularExpression about("^About [0-9.]+ (MB|kB|bytes)$");
    QTRY_VERIFY_WITH_TIMEOUT(about.match(size->text()).hasMatch(), kWaitMs);
    const QString asVideo = size->text();
    gKelMovieConfig.playbackEncodeFormat = 2; // changed elsewhere
    QTRY_VERIFY_WITH_TIMEOUT(about.match(size->text()).hasMatch() && size->text() != asVideo, kWaitMs);
    panel.setRange(-1, -1);
    QTRY_VERIFY_WITH_TIMEOUT(size->text().contains(" to "), kWaitMs);
    panel.setPlaybackManager(nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(size->text().isEmpty(), kWaitMs);
}

QTEST_MAIN(ExportSizeTest)
#include "tst_export_size.moc"
