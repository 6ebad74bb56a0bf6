#include "support/Files.h"
#include "support/TestTable.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

namespace
{

/// A catalog, updated from the sources in the folders.
QString currentCatalog(const QString &name, const QStringList &folders)
{
    const QTemporaryDir dir;
    const QString copy = dir.filePath("copy.ts");
    QFile::copy(QString(KEL_SOURCE_DIR "/translations/") + name, copy);
    QStringList options{"-silent", "-I", "platform", "-I", "kelmovie", "-no-obsolete", "-locations", "none"};
    if (name.endsWith("_en.ts"))
        options += "-pluralonly";
    QProcess lupdate;
    lupdate.setWorkingDirectory(KEL_SOURCE_DIR);
    lupdate.start(KEL_LUPDATE, options + folders + QStringList{"-ts", copy});
    return lupdate.waitForFinished(60000) && lupdate.exitCode() == 0 ? readFile(copy) : QString();
}

QStringList found(const QString &text, const char *expression)
{
    QStringList all;
    for (auto matches = QRegularExpression(expression).globalMatch(text); matches.hasNext();)
        all += matches.next().captured();
    all.sort();
    return all;
}

} // namespace

/// Every text has a finished translation with the same placeholders, and a mnemonic where the source has one.
class TranslationsTest : public QObject
{
    Q_OBJECT

private slots:
    void catalogIsComplete_data()
    {
        const TestTable<QString, QStringList> row("catalog", "folders");
        row("module", "kelmovie_zh_CN.ts", {"platform", "kelmovie"});
        row("English plurals of the host", "keldock_en.ts", {"keldock"});
        row("host", "keldock_zh_CN.ts", {"keldock"});
    }

    void catalogIsComplete()
    {
        QFETCH(QString, catalog);
        QFETCH(QStringList, folders);
        const QRegularExpression message("<source>(.*?)</source>.*?<translation([^>]*)>(.*?)</translation>",
                                         QRegularExpression::DotMatchesEverythingOption);
        auto messages = message.globalMatch(currentCatalog(catalog, folders));
        QVERIFY(messages.hasNext());
        while (messages.hasNext()) {
            const QStringList parts = messages.next().capturedTexts();
            QVERIFY2(!parts[2].contains("type="), qPrintable("not translated: " + parts[1]));
            // The plural forms of a text are elements of their own.
            for (const QString &text :
                 parts[3].split(QRegularExpression("\\s*</?numerusform>\\s*"), Qt::SkipEmptyParts)) {
                QCOMPARE(found(text, "%(L?\\d|n)"), found(parts[1], "%(L?\\d|n)"));
                QCOMPARE(found(text, "&amp;[^& ]").isEmpty(), found(parts[1], "&amp;[^& ]").isEmpty());
            }
            QVERIFY2(!parts[3].isEmpty(), qPrintable("empty: " + parts[1]));
        }
    }

    void catalogIsEmbedded()
    {
        QTranslator translator;
        QVERIFY(translator.load(QLocale("zh_CN"), "kelmovie", "_", ":/i18n"));
        QVERIFY(QCoreApplication::installTranslator(&translator));
        QCOMPARE(QCoreApplication::translate("KelRecordButton", "Start recording"), QString("开始录制"));
    }
};

QTEST_GUILESS_MAIN(TranslationsTest)
#include "tst_translations.moc"
