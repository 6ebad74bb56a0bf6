#include "recording/KelRecordingMetadata.h"

#include "support/Files.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"

#include <QTemporaryDir>
#include <QtTest>

namespace
{
KelRecordingMetadata sample()
{
    KelRecordingMetadata metadata;
    metadata.recordArea = QRect(-100, 50, 1002, 602);
    metadata.fps = 24;
    metadata.totalFrames = 240;
    metadata.actualRecordedFrames = 239;
    metadata.durationMs = 10000;
    metadata.timestamp = "2026-01-31T12:34:56";
    metadata.pixelRatio = 1.25;
    metadata.devicePixelRatio = 1.5;
    metadata.mouseTrack = false;
    return metadata;
}

const QByteArray kSampleJson = R"({
    "actualRecordedFrames": 239,
    "devicePixelRatio": 1.5,
    "duration": 10000,
    "fps": 24,
    "pixelRatio": 1.25,
    "recordArea": {
        "height": 602,
        "width": 1002,
        "x": -100,
        "y": 50
    },
    "timestamp": "2026-01-31T12:34:56",
    "totalFrames": 240,
    "tracks": {
        "keyboardTrack": false,
        "microphoneAudio": false,
        "mouseTrack": false,
        "screenTrack": true,
        "systemAudio": false
    },
    "version": "1.0"
}
)";

} // namespace

class RecordingMetadataTest : public QObject
{
    Q_OBJECT

private slots:
    void writesTheFormat();
    void readsHostileValues_data();
    void readsHostileValues();
    void missingMembersBecomeDefaults();
    void rejectsInvalidFiles_data();
    void rejectsInvalidFiles();
    void failedSaveKeepsTheOldFile();
    void saveFollowsNoLink();
};

void RecordingMetadataTest::writesTheFormat()
{
    const QTemporaryDir dir;
    using Metadata = KelRecordingMetadata;
    for (const auto &[name, flag] : {std::pair<const char *, bool Metadata::*>("screenTrack", &Metadata::screenTrack),
                                     {"mouseTrack", &Metadata::mouseTrack},
                                     {"keyboardTrack", &Metadata::keyboardTrack},
                                     {"systemAudio", &Metadata::systemAudio},
                                     {"microphoneAudio", &Metadata::microphoneAudio}}) {
        const bool isComplete = flag != &Metadata::mouseTrack;
        Metadata metadata = sample();
        metadata.screenTrack = false;
        metadata.*flag = true;
        metadata.complete = isComplete;
        QByteArray expected = kSampleJson;
        expected.replace("\"screenTrack\": true", "\"screenTrack\": false");
        expected.replace(QByteArray(name) + "\": false", QByteArray(name) + "\": true");
        if (!isComplete)
            expected.replace("    \"devicePixelRatio\"", "    \"complete\": false,\n    \"devicePixelRatio\"");
        QString error;
        QVERIFY2(metadata.save(dir.path(), &error), qPrintable(error));
        QCOMPARE(readFile(dir.filePath("TrackManager.meta")), expected);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{"TrackManager.meta"});
        Metadata loaded;
        QVERIFY(Metadata::load(dir.path(), &loaded));
        QCOMPARE(loaded.toJson(), expected);
    }
}

void RecordingMetadataTest::readsHostileValues_data()
{
    const TestTable<QByteArray, QRect, int, qint64, double> row("json", "area", "fps", "durationMs",
                                                                "devicePixelRatio");
    const QRect none(0, 0, 0, 0);
    row("beyond 32 bits", R"({"duration": 5000000000, "totalFrames": 9007199254740993})", none, 25, 5000000000, 1);
    row("older duration key", R"({"recordingDuration": 1500})", none, 25, 1500, 1);
    row("newer key wins", R"({"recordingDuration": 1500, "duration": 7})", none, 25, 7, 1);
    row("duration as text", R"({"duration": "2500"})", none, 25, 2500, 1);
    row("negative duration", R"({"duration": -1})", none, 25, 0, 1);
    row("huge duration", R"({"duration": 1e300})", none, 25, 1000000000000, 1);
    row("hugely negative", R"({"duration": -1e300})", none, 25, 0, 1);
    row("largest integer", R"({"duration": 9223372036854775807})", none, 25, 1000000000000, 1);
    row("wrong types", R"({"duration": [], "fps": "30", "devicePixelRatio": {}, "recordArea": 7, "tracks": 3})", none,
        25, 0, 1);
    row("fps 0", R"({"duration": 0, "fps": 0})", none, 25, 0, 1);
    row("fps negative", R"({"duration": 0, "fps": -30})", none, 25, 0, 1);
    row("fps too high", R"({"duration": 0, "fps": 1001})", none, 25, 0, 1);
    row("fps out of range", R"({"duration": 0, "fps": 1e20})", none, 25, 0, 1);
    row("fps highest", R"({"duration": 0, "fps": 1000})", none, 1000, 0, 1);
    row("ratio too low", R"({"duration": 0, "devicePixelRatio": 0.09})", none, 25, 0, 1);
    row("ratio lowest", R"({"duration": 0, "devicePixelRatio": 0.1})", none, 25, 0, 0.1);
    row("ratio highest", R"({"duration": 0, "devicePixelRatio": 16})", none, 25, 0, 16);
    row("ratio too high", R"({"duration": 0, "devicePixelRatio": 16.1})", none, 25, 0, 1);
    row("area", R"({"duration": 0, "recordArea": {"x": -1048576, "width": 32768, "height": 2}})",
        QRect(-1048576, 0, 32768, 2), 25, 0, 1);
    row("area negative", R"({"duration": 0, "recordArea": {"width": -4, "height": 10}})", none, 25, 0, 1);
    row("area wide", R"({"duration": 0, "recordArea": {"width": 32769, "height": 10}})", none, 25, 0, 1);
    row("area large", R"({"duration": 0, "recordArea": {"width": 16384, "height": 16385}})", none, 25, 0, 1);
    row("area far away", R"({"duration": 0, "recordArea": {"x": 1048577, "width": 10, "height": 10}})", none, 25, 0, 1);
}

void RecordingMetadataTest::readsHostileValues()
{
    QFETCH(QByteArray, json);
    KelRecordingMetadata metadata;
    QVERIFY(KelRecordingMetadata::fromJson(json, &metadata));
    QTEST(metadata.recordArea, "area");
    QTEST(metadata.fps, "fps");
    QTEST(metadata.durationMs, "durationMs");
    QTEST(metadata.devicePixelRatio, "devicePixelRatio");
    QVERIFY(metadata.totalFrames <= 1000000000000);
}

void RecordingMetadataTest::missingMembersBecomeDefaults()
{
    LogCapture log;
    KelRecordingMetadata metadata = sample();
    QVERIFY(KelRecordingMetadata::fromJson("{\"tracks\": {\"keyboardTrack\": true}}", &metadata));
    QCOMPARE(log.take(), QStringList{"W No recording duration found in metadata"});
    KelRecordingMetadata expected;
    expected.recordArea = QRect(0, 0, 0, 0);
    expected.keyboardTrack = true;
    QCOMPARE(metadata.toJson(), expected.toJson());
}

void RecordingMetadataTest::rejectsInvalidFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("truncated") << kSampleJson.left(100);
    QTest::newRow("array") << QByteArray("[1, 2]");
    QTest::newRow("deep") << QByteArray(100000, '[');
    QTest::newRow("endless") << QByteArray("{}") + QByteArray(1 << 20, ' ');
}

void RecordingMetadataTest::rejectsInvalidFiles()
{
    QFETCH(QByteArray, bytes);
    const QTemporaryDir dir;
    LogCapture log;
    KelRecordingMetadata metadata = sample();
    QVERIFY(!KelRecordingMetadata::load(dir.path(), &metadata));
    QCOMPARE(log.take(),
             QStringList{QString("W Cannot open manager metadata: \"%1/TrackManager.meta\"").arg(dir.path())});
    writeFile(dir.filePath("TrackManager.meta"), bytes);
    QVERIFY(!KelRecordingMetadata::load(dir.path(), &metadata));
    QCOMPARE(log.take(), QStringList{"W Invalid manager metadata format"});
    QCOMPARE(metadata.toJson(), kSampleJson);
}

void RecordingMetadataTest::failedSaveKeepsTheOldFile()
{
    const QTemporaryDir dir;
    QVERIFY(sample().save(dir.path()));
    // A directory that is not empty takes the place of the temporary file.
    QVERIFY(QDir(dir.path()).mkpath("TrackManager.meta.tmp/occupied"));
    QString error;
    QVERIFY(!KelRecordingMetadata().save(dir.path(), &error));
    QVERIFY(!error.isEmpty());
    QCOMPARE(readFile(dir.filePath("TrackManager.meta")), kSampleJson);

    error.clear();
    QVERIFY(!sample().save(dir.filePath("missing"), &error));
    QVERIFY(!error.isEmpty());
}

void RecordingMetadataTest::saveFollowsNoLink()
{
    const QTemporaryDir dir;
    writeFile(dir.filePath("bystander"), "untouched");
    QVERIFY(QFile::link(dir.filePath("bystander"), dir.filePath("TrackManager.meta.tmp")));
    QVERIFY(sample().save(dir.path()));
    QCOMPARE(readFile(dir.filePath("bystander")), QByteArray("untouched"));
    QCOMPARE(readFile(dir.filePath("TrackManager.meta")), kSampleJson);

    QVERIFY(QFile::remove(dir.filePath("TrackManager.meta")));
    QVERIFY(QFile::link(dir.filePath("bystander"), dir.filePath("TrackManager.meta")));
    QString error;
    QVERIFY(!sample().save(dir.path(), &error));
    QCOMPARE(error, QString("It is a link"));
    QCOMPARE(readFile(dir.filePath("bystander")), QByteArray("untouched"));
}

QTEST_GUILESS_MAIN(RecordingMetadataTest)
#include "tst_recording_metadata.moc"
