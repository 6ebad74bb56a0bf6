#include "settings/DockConfigIO.h"
#include "settings/DockSettings.h"
#include "support/Files.h"
#include "support/TestTable.h"

#include <KelMovie/KelMovieConfig.h>

#include <QSignalSpy>
#include <QtTest>

class DockConfigTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        gKelMovieConfig = KelMovieConfig();
        m_dir = std::make_unique<QTemporaryDir>();
        m_path = m_dir->filePath("sub/keldock.ini");
    }

    void cleanup() { KelMovieConfigInit(nullptr); }

    void savesAndLoads()
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
    }

    void damagedFile_data()
    {
        const TestTable<QByteArray, QString, bool> row("line", "problem", "isKept");
        row("not a number", "KelMovie.record.fps=many", "KelMovie.record.fps", false);
        row("not a color", "KelMovie.playback.mouse.color=mauvish", "KelMovie.playback.mouse.color", false);
        row("neither true nor false", "KelMovie.record.mouse=", "KelMovie.record.mouse", false);
        row("not a settings file", "<?xml garbage\n\x01\x02", ".damaged", true);
    }

    void damagedFile()
    {
        QFETCH(QByteArray, line);
        QFETCH(QString, problem);
        QFETCH(bool, isKept);
        const QByteArray content = "[General]\nKelMovie.record.delay=5\n" + line + '\n';
        writeFile(m_path, content);
        DockConfigIO io(m_path);
        KelMovieConfigInit(&io);
        const KelMovieConfig defaults;
        QCOMPARE(gKelMovieConfig.recordFps, defaults.recordFps);
        QCOMPARE(gKelMovieConfig.recordMouse, defaults.recordMouse);
        QCOMPARE(gKelMovieConfig.playbackMouseColor, defaults.playbackMouseColor);
        QCOMPARE(gKelMovieConfig.recordDelay, 5); // readable settings are used
        QVERIFY2(io.problem().contains(problem), qPrintable(io.problem()));
        QCOMPARE(readFile(m_path + ".damaged"), isKept ? content : QByteArray("(no file)"));
    }

    void unwritableFile()
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
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
};

QTEST_MAIN(DockConfigTest)
#include "tst_dock_config.moc"
