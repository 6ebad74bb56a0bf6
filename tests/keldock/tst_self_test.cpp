#include "keldock/Keldock.h"
#include "support/TestTable.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using Environment = QProcessEnvironment;

/// `keldock selftest` on a complete system and with something missing.
class SelfTestTest : public QObject
{
    Q_OBJECT

private slots:
    void reports_data()
    {
        const TestTable<QString, QString, int, QStringList> row("variable", "value", "status", "mentions");
        row("complete system", "NOTHING", "", 0,
            {"MP4, GIF, APNG, WebP", "H.264", "libavcodec ", "x264 ", "libwebp ", "libdeflate ",
             "Record and play back: passed\n", "Encode and decode: passed\n  MP4\n  GIF\n  APNG\n  WebP\n",
             "Find devices: passed\n", "1280x800 at 0,0", "keyboard and mouse\n"});
        row("no space for temporary files", "TMPDIR", "/dev/null", 1,
            {"Record and play back: FAILED: cannot create a temporary directory",
             "Encode and decode: FAILED: cannot create a temporary directory", "Find devices: passed\n"});
    }

    void reports()
    {
        QFETCH(QString, variable);
        QFETCH(QString, value);
        QFETCH(QStringList, mentions);

        const QTemporaryDir temporary;
        Environment environment = Environment::systemEnvironment();
        for (const char *name : {"TMPDIR", "TMP", "TEMP"})
            environment.insert(name, variable == "TMPDIR" ? value : temporary.path());
        if (value.isEmpty())
            environment.remove(variable);
        else
            environment.insert(variable, value);
        environment.remove("QT_QPA_PLATFORM");
        const Keldock run = Keldock::run({"selftest"}, environment);
        QTEST(run.status, "status");
        for (const QString &mention : mentions)
            QVERIFY2(run.output.contains(mention), qPrintable(mention + " is missing in:\n" + run.output));
        QCOMPARE(run.output.contains("warning"), value == "unix:/nowhere");
        QCOMPARE(QDir(temporary.path()).entryList({"KelDock*", "kel*", "tst*"}), QStringList());
    }

    /// Only on systems with servers for display and sound.
    void reportsServers_data()
    {
        const TestTable<QString, QString, int, QStringList> row("variable", "value", "status", "mentions");
        row("complete system", "NOTHING", "", 0,
            {"X11\n", "system audio: speakers\n", "microphone: microphone.monitor\n"});
        row("no sound", "PULSE_SERVER", "unix:/nowhere", 0,
            {"Find devices: passed\n", "warning: no device plays sound", "warning: there is no microphone\n"});
        row("no display", "DISPLAY", "", 1,
            {"H.264", "Record and play back: FAILED: ", "Encode and decode: passed\n",
             "Find devices: FAILED: ", "there is no display"});
    }

    void reportsServers() { reports(); }
};

QTEST_GUILESS_MAIN(SelfTestTest)
#include "tst_self_test.moc"
