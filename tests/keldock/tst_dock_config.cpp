#include "settings/DockConfigIO.h"
#include "settings/DockSettings.h"
#include "support/TestTable.h"

#include <KelMovie/KelMovieConfig.h>

#include <QSignalSpy>
#include <QtTest>

class DockConfigTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void savesAndLoads();
    void damagedFile_data();
    void damagedFile();
    void unwritableFile();

private:
    void write(const QByteArray &content) const;

    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
};

void DockConfigTest::init()
{
    gKelMovieConfig = KelMovieConfig();
    m_dir = std::make_unique<QTemporaryDir>();
    m_path = m_dir->filePath("sub/keldock.ini");
}

void DockConfigTest::write(const QByteArray &content) const
{
    QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

void DockConfigTest::savesAndLoads()
{
    {
        DockConfigIO io(m_path);
        KelMovieConfigInit(&io);
        DockSettings settings;
        settings.bind(io);
        QVERIFY(settings.lastArea().isEmpty());
        io.saveChanges();
        QVERIFY2(!QFile::exists(m_path), "nothing was changed, so nothing is saved");

        io.saveInt("KelMovie.record.fps", 60);
        io.saveBool("KelMovie.record.keyboard", false);
        io.saveColor("KelMovie.playback.mouse.color", QColor(1, 2, 3, 4));
        io.saveString(DockSettings::kStopKeysKey, "Ctrl+Shift+F9");
        DockSettings::saveArea(io, QRect(-1280, 5, 640, 480));
        gKelMovieConfig.playbackKeyboardFont = QFont("DejaVu Sans", 17);
        gKelMovieConfig.playbackMouseClickEffect = 5;
        gKelMovieConfig.playbackMouseReplaceEffects = false;
        io.saveChanges();
        QCOMPARE(gKelMovieConfig.recordFps, 60);
        QCOMPARE(settings.stopKeys, QString("Ctrl+Shift+F9"));
        QCOMPARE(io.problem(), QString());
    }
    gKelMovieConfig = KelMovieConfig();
    DockConfigIO io(m_path);
    KelMovieConfigInit(&io);
    DockSettings settings;
    settings.bind(io);
    QCOMPARE(gKelMovieConfig.recordFps, 60);
    QCOMPARE(gKelMovieConfig.recordKeyboard, false);
    QCOMPARE(gKelMovieConfig.playbackMouseColor, QColor(1, 2, 3, 4));
    QCOMPARE(gKelMovieConfig.playbackKeyboardFont, QFont("DejaVu Sans", 17));
    QCOMPARE(gKelMovieConfig.playbackProgressGapTime, 41);
    QCOMPARE(gKelMovieConfig.playbackMouseClickEffect, 5);
    QCOMPARE(gKelMovieConfig.playbackMouseReplaceEffects, false);
    QCOMPARE(settings.stopKeys, QString("Ctrl+Shift+F9"));
    QCOMPARE(settings.recordKeys, DockSettings().recordKeys);
    QCOMPARE(settings.lastArea(), QRect(-1280, 5, 640, 480));
    QCOMPARE(io.problem(), QString());
    KelMovieConfigInit(nullptr);
}

void DockConfigTest::damagedFile_data()
{
    const TestTable<QByteArray, QString, bool> row("content", "problem", "isKept");
    row("not a number", QByteArray("[General]\nKelMovie.record.delay=5\nKelMovie.record.fps=many\n"),
        "KelMovie.record.fps", false);
    row("not a color",
        QByteArray("[General]\nKelMovie.playback.mouse.color=mauvish\n"
                   "KelMovie.record.delay=5\n"),
        "KelMovie.playback.mouse.color", false);
    row("neither true nor false", QByteArray("[General]\nKelMovie.record.mouse=\nKelMovie.record.delay=5\n"),
        "KelMovie.record.mouse", false);
    row("not a settings file", QByteArray("[General]\nKelMovie.record.delay=5\n<?xml garbage\n\x01\x02"), ".damaged",
        true);
}

void DockConfigTest::damagedFile()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, problem);
    QFETCH(bool, isKept);
    write(content);
    DockConfigIO io(m_path);
    KelMovieConfigInit(&io);
    const KelMovieConfig defaults;
    QCOMPARE(gKelMovieConfig.recordFps, defaults.recordFps);
    QCOMPARE(gKelMovieConfig.recordMouse, defaults.recordMouse);
    QCOMPARE(gKelMovieConfig.playbackMouseColor, defaults.playbackMouseColor);
    QCOMPARE(gKelMovieConfig.recordDelay, 5); // readable settings are used
    QVERIFY2(io.problem().contains(problem), qPrintable(io.problem()));
    QFile copy(m_path + ".damaged");
    QCOMPARE(copy.open(QIODevice::ReadOnly), isKept);
    if (isKept)
        QCOMPARE(copy.readAll(), content);
    KelMovieConfigInit(nullptr);
}

void DockConfigTest::unwritableFile()
{
    // A directory instead of the file, which not even root can write to.
    QVERIFY(QDir().mkpath(m_path + "/x"));
    DockConfigIO io(m_path);
    KelMovieConfigInit(&io);
    QSignalSpy problems(&io, &DockConfigIO::problemFound);
    io.saveInt("KelMovie.record.fps", 16);
    io.saveInt("KelMovie.record.delay", 3);
    QCOMPARE(gKelMovieConfig.recordFps, 16);
    QCOMPARE(gKelMovieConfig.recordDelay, 3);
    QCOMPARE(problems.size() + (io.problem().contains("read") ? 1 : 0), 1); // reported once
    KelMovieConfigInit(nullptr);
}

QTEST_MAIN(DockConfigTest)
#include "tst_dock_config.moc"
