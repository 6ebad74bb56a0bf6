#include "cli/commands/ExportCommand.h"
#include "cli/commands/FrameCommand.h"
#include "cli/commands/InfoCommand.h"
#include "cli/commands/RecordCommand.h"
#include "keldock/Keldock.h"
#include "support/Files.h"
#include "support/TestTable.h"

#include <QTemporaryDir>
#include <QtTest>

namespace
{

/// What the command that is the first word says about the others.
QString usageError(QStringList words)
{
    const QString command = words.takeFirst();
    if (command == "record")
        return RecordCommand().parse(words);
    if (command == "info")
        return InfoCommand().parse(words);
    return command == "export" ? ExportCommand().parse(words) : FrameCommand().parse(words);
}

} // namespace

class CommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    void help_data()
    {
        const TestTable<QString, QStringList> row("arguments", "mentions");
        row("overview", "--help", {"record", "info", "export", "frame", "--verbose", "Exit status"});
        row("help word", "help frame", {"keldock frame DIR N FILE.png"});
        row("of a command", "export x --help",
            {"--format", "--from", "--to", "--speed", "--fps", "--quality", "--loops", "--size", "Examples:"});
        row("version", "--version", {"keldock 2.0.0", "2.0.0-multitrack"});
    }

    void help()
    {
        QFETCH(QString, arguments);
        QFETCH(QStringList, mentions);
        const Keldock keldock = Keldock::run(arguments.split(' '));
        QCOMPARE(keldock.status, 0);
        QCOMPARE(keldock.errors, QString());
        for (const QString &mention : mentions)
            QVERIFY2(keldock.output.contains(mention), qPrintable(mention));
        for (const QString &line : keldock.output.split('\n'))
            QVERIFY2(line.size() <= 120, qPrintable(line));
    }

    void wrongUsage_data()
    {
        const TestTable<QString, QString> table("arguments", "hint");
        const auto row = [&](const char *arguments, const char *hint) { table(arguments, arguments, hint); };
        row("record --out d", "--area X,Y,WxH or --screen N");
        row("record --screen 0 --area 0,0,9x9 --out d", "cannot be combined");
        row("record --screen 0", "--out DIR is missing");
        row("record --screen 0 --out", "Missing value");
        row("record --screen one --out d", "--screen must be an integer");
        row("record --area 0,0,0x10 --out d", "--area must be X,Y,WxH");
        row("record --area 0,0,10x-1 --out d", "--area must be X,Y,WxH");
        row("record --area 0,0,99999x99999 --out d", "--area must be X,Y,WxH");
        row("record --area 10x10 --out d", "--area must be X,Y,WxH");
        row("record --screen 0 --fps 0 --out d", "from 1 to 240");
        row("record --screen 0 --fps 241 --out d", "from 1 to 240");
        row("record --screen 0 --duration nan --out d", "--duration must be a number");
        row("record --screen 0 --duration -3 --out d", "--duration must be a number");
        row("record --screen 0 --mouse --no-mouse --out d", "cannot be combined");
        row("record --screen 0 --out d extra", "unexpected argument 'extra'");
        row("record --screen 0 --out d --fast", "unknown option '--fast'");
        row("info", "DIR is missing");
        row("info d e", "unexpected argument 'e'");
        row("export d", "FILE is missing");
        row("export d f.avi", "is not a known format");
        row("export d f", "is not a known format");
        row("export d f.mp4 --format avi", "--format must be mp4, gif, apng or webp");
        row("export d f.mp4 --speed 0.05", "from 0.1 to 16");
        row("export d f.mp4 --speed 17", "from 0.1 to 16");
        row("export d f.mp4 --from -1", "--from must be an integer");
        row("export d f.mp4 --from 500 --to 500", "--to must be greater than --from");
        row("export d f.mp4 --quality 101", "from 0 to 100");
        row("export d f.mp4 --quality good", "small, balanced, best");
        row("export d f.mp4 --loops 65536", "from 0 to 65535");
        row("export d f.mp4 --size 640x0", "--size must be WxH");
        row("frame d 0", "FILE.png is missing");
        row("frame d x f.png", "must be a frame number");
        row("frame d 0 f.jpg", "does not end in .png");
    }

    void wrongUsage()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, hint);
        const QString error = usageError(arguments.split(' '));
        QVERIFY2(error.contains(hint), qPrintable(error));
    }

    void reportsWrongUsage()
    {
        for (const QString hint : {"unknown command 'play'", "DIR is missing"}) {
            const Keldock keldock = Keldock::run({hint.contains("play") ? "play" : "info"});
            QCOMPARE(keldock.status, 2);
            QCOMPARE(keldock.output, QString());
            QVERIFY2(keldock.errors.contains(hint) && keldock.errors.contains("--help"), qPrintable(keldock.errors));
        }
    }

    void noRecording_data()
    {
        const TestTable<QString, QString> row("directory", "reason");
        row("missing", "missing", "there is no directory");
        row("a file", "file", "is not a directory");
        row("empty", "empty", "does not contain a recording");
    }

    void noRecording()
    {
        QFETCH(QString, directory);
        QFETCH(QString, reason);
        const QTemporaryDir scratch;
        QVERIFY(QDir(scratch.path()).mkdir("empty"));
        writeFile(scratch.filePath("file"), "");
        const QString path = scratch.filePath(directory);
        const QString output = scratch.filePath("output.");
        for (const QStringList &arguments :
             {QStringList{"info", path, "--json"}, QStringList{"export", path, output + "gif"},
              QStringList{"frame", path, "0", output + "png"}}) {
            const Keldock keldock = Keldock::run(arguments);
            QVERIFY2(keldock.failedWith(reason), qPrintable(keldock.errors));
            QCOMPARE(keldock.output, QString());
        }
        QCOMPARE(QDir(scratch.path()).entryList({"output*"}), QStringList());
    }

    void noDisplay_data()
    {
        const TestTable<QString, QString, QString> row("display", "platform", "reason");
        row("none", "", "", "DISPLAY is not set");
        row("no server", ":987", "", "no connection to the X server \":987\"");
        row("platform set", ":987", "xcb", "no connection to the X server \":987\"");
    }

    void noDisplay()
    {
        QFETCH(QString, display);
        QFETCH(QString, platform);
        QFETCH(QString, reason);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"DISPLAY", "QT_QPA_PLATFORM", "WAYLAND_DISPLAY"})
            environment.remove(name);
        if (!display.isEmpty())
            environment.insert("DISPLAY", display);
        if (!platform.isEmpty())
            environment.insert("QT_QPA_PLATFORM", platform);
        const QTemporaryDir scratch;
        const QString out = scratch.filePath("out");
        const Keldock keldock = Keldock::run({"record", "--screen", "0", "--out", out}, environment);
        QVERIFY2(keldock.failedWith(reason), qPrintable(keldock.errors));
        QVERIFY(!QFile::exists(out));
        // The recorder needs a display as well. For a platform set by the user, the error message is Qt's.
        if (platform.isEmpty()) {
            const Keldock recorder = Keldock::run({}, environment);
            QCOMPARE(recorder.status, 1);
            QVERIFY2(recorder.errors.contains("keldock: there is no display"), qPrintable(recorder.errors));
        }
    }

    void lostOutput()
    {
        QProcess process;
        process.setStandardOutputFile("/dev/full");
        process.start(KELDOCK_PROGRAM, {"--help"});
        const Keldock keldock = Keldock::finish(process);
        QVERIFY2(keldock.failedWith("cannot write to standard output"), qPrintable(keldock.errors));
    }

    /// Who closes standard output, or stops reading, wants no more of it.
    void unreadOutput()
    {
        for (const char *script : {"\"$0\" --help >&-", "\"$0\" --help 0<&- 1>&- 2>&-",
                                   "exec 3> >(exec true); wait $!; \"$0\" --help >&3"}) {
            const Keldock unread = Keldock::runShell(script);
            QVERIFY2(unread.status == 0, script);
            QCOMPARE(unread.errors, QString());
        }
    }
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "tst_command_line.moc"
