#pragma once

#include "area/AreaPicker.h"
#include "recorder/AreaFrame.h"
#include "recorder/CountdownOverlay.h"
#include "recorder/RecordToolbar.h"
#include "recorder/RecordingController.h"
#include "recorder/TrayIcon.h"

#include <QObject>

struct DockSettings;
class KelConfigIO;

/// The recorder on the screen: toolbar, area picker, countdown, frame around the area, and tray icon. Keeps all of them
/// out of the recorded area. GUI thread.
class RecorderUi : public QObject
{
    Q_OBJECT

public:
    /// All three must outlive this object.
    RecorderUi(RecordingController &controller, const DockSettings &settings, KelConfigIO &io,
               QObject *parent = nullptr);

    enum class ToolbarState {
        Open,
        Minimized,    ///< until the user brings it back
        SteppedAside, ///< until the windows that it would cover are closed
        Closed        ///< by the user; the program ends with its last window
    };

    RecordToolbar &toolbar() { return m_toolbar; }
    ToolbarState toolbarState() const { return m_toolbarState; }
    bool isToolbarSeen() const { return m_toolbar.isVisible() && !m_toolbar.isMinimized(); }
    /// The shortcut that stops, for display; empty if there is none. The countdown shows it when the toolbar has to
    /// hide.
    void setStopKeys(const QString &keys) { m_stopKeys = keys; }

public slots:
    void showToolbar();
    /// Hides the toolbar for one of the reasons other than `Open`.
    void hideToolbar(ToolbarState state);
    /// Hides the toolbar if there is a tray icon to bring it back, otherwise minimizes it.
    void minimize();
    void chooseArea();
    /// Starts a recording. If no area is chosen yet, the user chooses one first.
    void startRecording();

signals:
    void recordingsRequested();
    void settingsRequested();
    void closeRequested();
    void quitRequested();

private:
    void connectToolbar();
    void connectTray();
    void openPicker();
    void useArea(const QRect &area);
    void endPicking();
    bool confirmRecordingKeys();
    void showState(RecordingController::State state);
    void showCountdown(int secondsLeft);
    void previewArea(bool shown);

    RecordingController &m_controller;
    const DockSettings &m_settings;
    KelConfigIO &m_io;
    RecordToolbar m_toolbar;
    AreaPicker m_picker;
    AreaFrame m_frame;
    CountdownOverlay m_countdown;
    TrayIcon m_tray;
    QString m_stopKeys;
    ToolbarState m_toolbarState = ToolbarState::Closed;
    bool m_isChoosing = false;
    bool m_isAsking = false; // shortcuts and tray icon keep working while a question is open
    bool m_recordsAfterChoosing = false;
    bool m_hidesWhileRecording = false;
};
