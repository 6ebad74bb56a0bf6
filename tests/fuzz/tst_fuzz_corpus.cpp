#include "FuzzTarget.h"

#include "support/Files.h"

#include <QDir>
#include <QTest>

/// Every input that the fuzz targets start from, among them all that ever broke one.
class FuzzCorpusTest : public QObject
{
    Q_OBJECT

private slots:
    void runs_data();
    void runs();
};

void FuzzCorpusTest::runs_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QString>("path");
    for (const FuzzTarget &target : fuzzTargets()) {
        const QDir corpus(QString(FUZZ_CORPUS "/") + target.name);
        const QStringList inputs = corpus.entryList(QDir::Files, QDir::Name);
        QVERIFY2(!inputs.isEmpty(), qPrintable(corpus.path() + " has no inputs"));
        for (const QString &input : inputs)
            QTest::addRow("%s/%s", target.name, qPrintable(input)) << QByteArray(target.name) << corpus.filePath(input);
    }
}

void FuzzCorpusTest::runs()
{
    QFETCH(QByteArray, target);
    QFETCH(QString, path);
    const QByteArray input = readFile(path);
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    findFuzzTarget(target)->run(input);
    qInstallMessageHandler(previous);
}

QTEST_MAIN(FuzzCorpusTest)

#include "tst_fuzz_corpus.moc"
