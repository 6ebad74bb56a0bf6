#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>

/// Every text has a finished translation with the same placeholders and a mnemonic where the source has one.
class TranslationsTest : public QObject
{
    Q_OBJECT

private slots:
    void catalogIsComplete_data();
    void catalogIsComplete();
    void catalogIsEmbedded();
};

namespace
{

struct Message {
    QString source;
    QStringList translations;
    bool isPlural = false;
    bool isFinished = true;
};

/// The messages of a catalog, updated from the sources.
QList<Message> currentMessages(const QString &catalog, const QStringList &folders)
{
    QTemporaryDir dir;
    const QString copy = dir.filePath("copy.ts");
    if (!QFile::copy(catalog, copy))
        return {};
    QProcess lupdate;
    lupdate.setWorkingDirectory(KEL_SOURCE_DIR);
    lupdate.start(KEL_LUPDATE,
                  QStringList{"-silent", "-I", "platform", "-I", "kelmovie", "-no-obsolete", "-locations", "none"} +
                      (catalog.endsWith("_en.ts") ? QStringList{"-pluralonly"} : QStringList()) + folders +
                      QStringList{"-ts", copy});
    if (!lupdate.waitForFinished(60000) || lupdate.exitCode() != 0)
        return {};

    QFile file(copy);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<Message> messages;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("message")) {
            messages.append(Message{});
            messages.last().isPlural = xml.attributes().hasAttribute("numerus");
        } else if (xml.name() == QLatin1String("source")) {
            messages.last().source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            messages.last().isFinished = !xml.attributes().hasAttribute("type");
            const QString text = xml.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
            messages.last().translations =
                messages.last().isPlural ? text.split(QRegularExpression("\\s*\n\\s*")) : QStringList{text};
        }
    }
    return xml.hasError() ? QList<Message>{} : messages;
}

/// The placeholders of a text, sorted.
QStringList placeholders(const QString &text)
{
    static const QRegularExpression expression("%(?:L?\\d|n)");
    QStringList found;
    auto matches = expression.globalMatch(text);
    while (matches.hasNext()) {
        found.append(matches.next().captured());
    }
    found.sort();
    return found;
}

bool hasMnemonic(const QString &text)
{
    static const QRegularExpression expression("&[^& ]");
    return text.contains(expression);
}

} // namespace

void TranslationsTest::catalogIsComplete_data()
{
    QTest::addColumn<QString>("catalog");
    QTest::addColumn<QStringList>("folders");
    QTest::newRow("module") << "kelmovie_zh_CN.ts" << QStringList{"platform", "kelmovie"};
    QTest::newRow("English plurals of the host") << "keldock_en.ts" << QStringList{"keldock"};
    QTest::newRow("host") << "keldock_zh_CN.ts" << QStringList{"keldock"};
}

void TranslationsTest::catalogIsComplete()
{
    QFETCH(QString, catalog);
    QFETCH(QStringList, folders);

    const QList<Message> messages = currentMessages(QString(KEL_SOURCE_DIR "/translations/") + catalog, folders);
    QVERIFY(!messages.isEmpty());
    for (const Message &message : messages) {
        QVERIFY2(message.isFinished, qPrintable("not translated: " + message.source));
        for (const QString &translation : message.translations) {
            QVERIFY2(!translation.isEmpty(), qPrintable("empty: " + message.source));
            QVERIFY2(placeholders(translation) == placeholders(message.source), qPrintable(translation));
            QVERIFY2(hasMnemonic(translation) == hasMnemonic(message.source), qPrintable(translation));
        }
    }
}

void TranslationsTest::catalogIsEmbedded()
{
    QTranslator translator;
    QVERIFY(translator.load(QLocale("zh_CN"), "kelmovie", "_", ":/i18n"));
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QCOMPARE(QCoreApplication::translate("KelRecordButton", "Start recording"), QString("开始录制"));
}

QTEST_GUILESS_MAIN(TranslationsTest)
#include "tst_translations.moc"
