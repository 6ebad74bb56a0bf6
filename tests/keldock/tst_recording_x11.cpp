#include "keldock/RecordedScene.h"
#include "support/x11/XServer.h"

#include <QImage>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

/// Recording on X servers that fail or lack an extension, with the real program.
class RecordingX11Test : public QObject
{
    Q_OBJECT

private slots:
    void lostScreenKeepsRecording();
    void stopsWhileTheServerHangs();
    void continuesWithoutInput();
    void recordsPhysicalPixels();

private:
    QString path(const QString &name) const { return m_scratch.filePath(name); }

    QTemporaryDir m_scratch;
};

void RecordingX11Test::lostScreenKeepsRecording()
{
    XServer server;
    QProcess process;
    const QString out = path("lost");
    auto scene = std::make_unique<ColorScene>(kSceneRect, server.display());
    startRecording(process, out, server.display());
    scene.reset();
    server.kill();
    const Keldock keldock = Keldock::finish(process);
    QVERIFY2(keldock.status == 1, qPrintable(QString::number(keldock.status) + keldock.errors));
    QVERIFY(recordingInfo(out).value("complete").toBool());
    QVERIFY(recordingInfo(out).value("videoFrames").toInt() > 0);
}

void RecordingX11Test::stopsWhileTheServerHangs()
{
    XServer server;
    QProcess process;
    const QString out = path("hanging");
    const ColorScene scene(kSceneRect, server.display());
    startRecording(process, out, server.display());
    server.freeze();
    process.terminate();
    const Keldock keldock = Keldock::finish(process);
    server.thaw();
    QVERIFY2(keldock.status >= 0, qPrintable(keldock.errors)); // 1 if the server was asked for pixels
    QVERIFY(recordingInfo(out).value("complete").toBool());
    QVERIFY(recordingInfo(out).value("videoFrames").toInt() > 0);
}

void RecordingX11Test::continuesWithoutInput()
{
    const XServer server({"-screen", "0", "800x600x24", "-extension", "RECORD"});
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", server.display());
    const Keldock keldock = Keldock::run(
        {"record", "--area", kArea, "--duration", "0.5", "--keyboard", "--out", path("recording")}, environment);
    QVERIFY2(keldock.status == 0, qPrintable(keldock.errors));
    QCOMPARE(keldock.errors.count("keyboard and mouse cannot be monitored"), 1);
    QVERIFY2(keldock.errors.contains("RECORD") && keldock.errors.contains("continuing without"),
             qPrintable(keldock.errors));
}

void RecordingX11Test::recordsPhysicalPixels()
{
    const ColorScene scene(kSceneRect);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_SCALE_FACTOR", "2");
    const Keldock recorded =
        Keldock::run({"record", "--area", "10,15,160x120", "--duration", "0.5", "--out", path("scaled")}, environment);
    QVERIFY2(recorded.status == 0, qPrintable(recorded.errors));
    const QJsonObject info = recordingInfo(path("scaled"));
    QCOMPARE(info.value("recordArea").toObject(), (QJsonObject{{"x", 10}, {"y", 15}, {"width", 160}, {"height", 120}}));
    QCOMPARE(info.value("devicePixelRatio").toDouble(), 2.0);
    QCOMPARE(info.value("videoWidth").toInt(), 320);
    QCOMPARE(Keldock::run({"frame", path("scaled"), "0", path("frame.png")}).status, 0);
    const QImage frame(path("frame.png"));
    QCOMPARE(frame.size(), kSceneRect.size());
    for (const QPoint &corner : {frame.rect().topLeft(), frame.rect().bottomRight()})
        QVERIFY(ColorScene::step(frame.pixelColor(corner)) >= 0);
}

QTEST_GUILESS_MAIN(RecordingX11Test)
#include "tst_recording_x11.moc"
