#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/SavingConfigIO.h"

#include "export/KelExportPipeline.h"
#include "export/estimate/ExportSizeEstimator.h"
#include "playback/KelPlaybackTrackManager.h"

#include <KelMovie/SaveQualityPanel.h>

#include <QFileInfo>
#include <QLabel>
#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>

using namespace kel;

using Estimate = ExportSizeEstimator::Estimate;

namespace
{

constexpr int kFrames = 200;
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
    KelExportRequest request(int format = 0, int endMs = -1)
    {
        KelExportRequest request;
        request.format = format;
        request.playbackManager = manager.get();
        request.trimStartMs = endMs < 0 ? -1 : 400;
        request.trimEndMs = endMs;
        request.outputPath = output.filePath("file");
        return request;
    }

    RecordingOnDisk recording;
    std::unique_ptr<KelPlaybackTrackManager> manager;
    QTemporaryDir output;
};

void ExportSizeTest::initTestCase()
{
    recording.size(kSize.width(), kSize.height()).frames(kFrames, kFps).video(kFrames, image);
    manager = std::make_unique<KelPlaybackTrackManager>(recording.path(), false);
    QVERIFY2(manager->isValidRecording(), qPrintable(manager->errorString()));
}

void ExportSizeTest::matchesExportedFile_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("endMs");
    for (int format = 0; format < 4; ++format) {
        QTest::addRow("all, format %d", format) << format << -1;
        QTest::addRow("a part, format %d", format) << format << 2000;
    }
}

void ExportSizeTest::matchesExportedFile()
{
    QFETCH(int, format);
    QFETCH(int, endMs);

    manager->seek(17);
    const KelExportRequest wanted = request(format, endMs);
    ExportSizeEstimator estimator;
    QVector<Estimate> estimates;
    connect(&estimator, &ExportSizeEstimator::sigEstimated, this, [&](const Estimate &one) { estimates << one; });
    estimator.start(wanted);
    QTRY_VERIFY_WITH_TIMEOUT(!estimates.isEmpty() && estimates.last().isFinal, kWaitMs);
    QCOMPARE(manager->currentFrame(), 17);
    QVERIFY(!estimator.isRunning());

    QVERIFY(KelExportPipeline(wanted).run());
    const double ratio = double(estimates.last().bytes) / double(QFileInfo(wanted.outputPath).size());
    if (endMs >= 0) { // short enough to be encoded completely
        QCOMPARE(estimates.size(), 1);
        QVERIFY2(ratio > 0.99 && ratio < 1.01, qPrintable(QString::number(ratio)));
    } else {
        QVERIFY(estimates.size() > 1);
        QVERIFY(estimates.last().error > 0);
        const double margin = 1 + 1.5 * estimates.last().error;
        QVERIFY2(ratio < margin && ratio > 1 / margin, qPrintable(QString::number(ratio)));
    }
}

void ExportSizeTest::restartsAndStops()
{
    ExportSizeEstimator estimator;
    QVector<Estimate> estimates;
    connect(&estimator, &ExportSizeEstimator::sigEstimated, this, [&](const Estimate &one) { estimates << one; });
    estimator.start(request(2));
    QTRY_VERIFY_WITH_TIMEOUT(!estimates.isEmpty(), kWaitMs);
    const qint64 lossless = estimates.first().bytes;
    estimates.clear();
    estimator.start(request(0));
    QTRY_VERIFY_WITH_TIMEOUT(!estimates.isEmpty(), kWaitMs);
    QVERIFY(estimates.first().bytes < lossless / 2);
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
        estimator.start(wanted);
        QTRY_COMPARE_WITH_TIMEOUT(failures.size(), 1, kWaitMs);
        QVERIFY(!failures[0][0].toString().isEmpty());
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
