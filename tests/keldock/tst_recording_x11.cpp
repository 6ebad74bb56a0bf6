#include "keldock/RecordedScene.h"
#include "support/x11/XServer.h"

#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

/// The real program on X servers that do not give it all it wants.
class RecordingX11Test : public QObject
{
    Q_OBJECT

private slots:
    void lostScreenKeepsRecording();
    void goesOnWithoutInput();

private:
    QString path(const QString &name) const { return m_scratch.filePath(name); }

    QTemporaryDir m_scratch;
};

void RecordingX11Test::lostScreenKeepsRecording()
{
    XServer server;
    QProcess process;
    const QString out = path("lost");
    auto scene = std::make_unique<ColorScene>(SceneRect, server.display());
    startRecording(process, out, server.display());
    scene.reset();
    server.kill();
    const Keldock keldock = Keldock::finish(process);
    QVERIFY2(keldock.status == 1, qPrintable(QString::number(keldock.status) + keldock.errors));
    QVERIFY(recordingInfo(out).value("videoFrames").toInt() > 0);
}

void RecordingX11Test::goesOnWithoutInput()
{
    const XServer server({"-screen", "0", "800x600x24", "-extension", "RECORD"});
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", server.display());
    const Keldock deaf =
        Keldock::run({"record", "--area", Area, "--duration", "0.5", "--keyboard", "--out", path("deaf")}, environment);
    QVERIFY2(deaf.status == 0, qPrintable(deaf.errors));
    QCOMPARE(deaf.errors.count("keyboard and mouse cannot be watched"), 1);
    QVERIFY2(deaf.errors.contains("RECORD") && deaf.errors.contains("going on without"), qPrintable(deaf.errors));
}

QTEST_GUILESS_MAIN(RecordingX11Test)
#include "tst_recording_x11.moc"
