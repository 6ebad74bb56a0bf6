#pragma once

#include <QRect>
#include <QString>

class KelConfigIO;

/// The host's own settings; those of the module are in gKelMovieConfig. Read them when they are needed and change them
/// through KelConfigIO, which updates the fields. GUI thread.
struct DockSettings {
    QString recordingsFolder; ///< empty: the default, see RecordingsFolder
    int theme = 0;            ///< 0 same as the desktop, 1 light, 2 dark
    QString language;         ///< locale name; empty: same as the desktop
    QString recordKeys = QStringLiteral("Ctrl+Alt+R");
    QString pauseKeys = QStringLiteral("Ctrl+Alt+P");
    QString stopKeys = QStringLiteral("Ctrl+Alt+S");
    bool readsInputDevices = false;      ///< clicks and keys in Wayland sessions
    bool asksBeforeRecordingKeys = true; ///< at the start of each recording
    QString area;                        ///< the last recorded area, see lastArea()
    QString offeredRecordings;           ///< interrupted recordings that were offered to the user, one path per line

    static const QString kRecordingsFolderKey;
    static const QString kThemeKey;
    static const QString kLanguageKey;
    static const QString kRecordKeysKey;
    static const QString kPauseKeysKey;
    static const QString kStopKeysKey;
    static const QString kReadsInputDevicesKey;
    static const QString kAsksBeforeRecordingKeysKey;
    static const QString kAreaKey;
    static const QString kOfferedRecordingsKey;

    /// Binds all fields, which then hold the stored values, and the settings of the module that it does not store
    /// itself.
    void bind(KelConfigIO &io);

    /// Empty if none is stored.
    QRect lastArea() const;
    static void saveArea(KelConfigIO &io, const QRect &area);
};
