#include "keldock/RecordedScene.h"

#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

/// Recording a Wayland desktop whose compositor lets programs copy the screen, with the real program.
class RecordingWaylandTest : public QObject
{
    Q_OBJECT

private slots:
    void recordsTheDesktop();
    void lostCompositorKeepsTheRecording();

private:
    QTemporaryDir m_scratch;
};

void RecordingWaylandTest::recordsTheDesktop()
{
    const ColorScene scene(kSceneRect);
    const QString out = m_scratch.filePath("desktop");
    const Keldock keldock = Keldock::run({"record", "--area", kArea, "--fps", "20", "--duration", "1", "--out", out});
    QVERIFY2(keldock.output.contains("Recorded"), qPrintable(keldock.errors));
    const int frames = recordingInfo(out).value("logicFrames").toInt();
    QSet<int> steps;
    for (const int frame : {0, frames / 2, frames - 1}) { // the first is there at once
        const QString file = m_scratch.filePath("frame.png");
        QCOMPARE(Keldock::run({"frame", out, QString::number(frame), file}).status, 0);
        const QImage image(file);
        QCOMPARE(image.size(), kSceneRect.size());
        steps += ColorScene::step(image.pixelColor(160, 120));
        QCOMPARE(image.pixelColor(0, 0), image.pixelColor(319, 239));
    }
    QVERIFY(steps.size() > 1 && !steps.contains(-1));
    // The pointer is part of the frames: the mouse track has none.
    const QByteArray moves = readAll(out + "/Mouse/mousemoves-0.json");
    QVERIFY2(moves.contains("\"hide\"") && !moves.contains("\"move\""), moves);
}

/// The last, because it ends the session.
void RecordingWaylandTest::lostCompositorKeepsTheRecording()
{
    QProcess process;
    const QString out = m_scratch.filePath("lost");
    startRecording(process, out);
    kill(qEnvironmentVariableIntValue("COMPOSITOR_PID"), SIGKILL);
    const Keldock keldock = Keldock::finish(process);
    QCOMPARE(keldock.status, 1);
    QVERIFY2(keldock.errors.contains("the connection to the desktop is lost"), qPrintable(keldock.errors));
    QVERIFY(recordingInfo(out).value("complete").toBool());
    QVERIFY(recordingInfo(out).value("videoFrames").toInt() > 0);
}

QTEST_GUILESS_MAIN(RecordingWaylandTest)
#include "tst_recording_wayland.moc"
