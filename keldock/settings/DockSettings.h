#pragma once

#include <QRect>
#include <QString>

class KelConfigIO;

/// The host's own settings; those of the module are in gKelMovieConfig. Read at the moment of use, changed through the
/// store. GUI thread.
struct DockSettings {
    QString recordingsFolder; ///< empty: the folder for videos
    int theme = 0;            ///< 0 as the desktop, 1 light, 2 dark
    QString language;         ///< as in file names of translations; empty: the desktop's
    QString recordKeys = QStringLiteral("Ctrl+Alt+R");
    QString pauseKeys = QStringLiteral("Ctrl+Alt+P");
    QString stopKeys = QStringLiteral("Ctrl+Alt+S");
    QString area;             ///< the last one, see lastArea()
    QString offeredLeftovers; ///< interrupted recordings that a person was told of, a line each

    static const QString RecordingsFolderKey;
    static const QString ThemeKey;
    static const QString LanguageKey;
    static const QString RecordKeysKey;
    static const QString PauseKeysKey;
    static const QString StopKeysKey;
    static const QString AreaKey;
    static const QString OfferedLeftoversKey;

    void bind(KelConfigIO &io);

    /// Empty when none is known.
    QRect lastArea() const;
    static void saveArea(KelConfigIO &io, const QRect &area);
};
