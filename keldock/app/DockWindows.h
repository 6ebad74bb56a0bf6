#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class DockConfigIO;
class RecordingsWindow;
class SettingsDialog;
struct DockSettings;

/// Opens the windows besides the toolbar: playback, the list of recordings, and settings. Each window deletes itself
/// when it is closed. GUI thread.
class DockWindows : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive this object.
    DockWindows(DockConfigIO &io, const DockSettings &settings, QObject *parent = nullptr);

    /// Opens a playback window. `isNew`: the recording was just made. False when the directory does not exist.
    bool openRecording(const QString &dir, bool isNew = false);
    void openRecordings();
    void openSettings();

    /// The recording in progress, empty if there is none: the list of recordings protects it, and the
    /// settings say what applies to the next one only.
    void setActiveRecording(const QString &dir);

    /// Reports shortcuts that do not work, one per line, where the user edits them. False if the settings are not open.
    bool showShortcutProblems(const QString &problems);

    /// True while any window is open that keeps the program running, the toolbar included.
    static bool isAnyOpen();

signals:
    void recordRequested();
    /// A setting has changed.
    void settingsChanged();
    /// The user edits a shortcut: until the edit ends, the shortcuts must not trigger.
    void shortcutEditBegun();
    void shortcutEditEnded();

private:
    DockConfigIO &m_io;
    const DockSettings &m_settings;
    QString m_activeRecording;
    QPointer<RecordingsWindow> m_recordings;
    QPointer<SettingsDialog> m_settingsDialog;
};
