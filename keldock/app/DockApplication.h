#pragma once

#include "app/DockWindows.h"
#include "recorder/GlobalShortcuts.h"
#include "recorder/RecorderUi.h"
#include "recorder/RecordingController.h"

#include <console/StopSignal.h>

#include <QObject>

class DockConfigIO;
class SingleInstance;
struct DockSettings;

/// Switches the windows to the theme of the settings.
void applyTheme(const DockSettings &settings);

/// The running recorder: connects the controller of recordings with toolbar, shortcuts and windows, and decides when
/// the program ends. GUI thread.
class DockApplication : public QObject
{
    Q_OBJECT

public:
    /// All three must outlive this object.
    DockApplication(DockConfigIO &io, DockSettings &settings, SingleInstance &instance);
    /// Stops and keeps a recording in progress.
    ~DockApplication() override;

    /// Shows the toolbar and offers recordings that a crash has interrupted.
    void start();

private:
    void connectRecorder();
    void connectWindows();
    void connectSession();
    void applyShortcuts();
    void record();
    void openFinishedRecording(const QString &dir);
    void followState(RecordingController::State state);
    void offerInterruptedRecordings();
    void closeToolbar();
    void quit();
    void handleLastWindowClosed();
    void showProblem(RecordingController::Severity severity, const QString &text);

    DockConfigIO &m_io;
    DockSettings &m_settings;
    kel::StopSignal m_stopSignal;
    RecordingController m_controller;
    RecorderUi m_ui;
    DockWindows m_windows;
    GlobalShortcuts m_shortcuts;
    bool m_isEnding = false;
};
