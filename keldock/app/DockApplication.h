#pragma once

#include "app/SingleInstance.h"
#include "recorder/GlobalShortcuts.h"
#include "recorder/RecorderUi.h"
#include "recorder/RecordingController.h"
#include "settings/DockConfigIO.h"
#include "settings/DockSettings.h"

#include <console/StopSignal.h>

#include <QObject>
#include <QPointer>

class RecordingsWindow;
class SettingsDialog;

/// The desktop recorder: it owns settings, recorder and windows and joins them. GUI thread.
class DockApplication : public QObject
{
    Q_OBJECT

public:
    /// Runs the program; answers its exit status.
    static int run(int argc, char **argv);

    ~DockApplication() override;

private:
    DockApplication(DockConfigIO &io, DockSettings &settings, SingleInstance &instance);

    void start();
    void connectRecorder();
    void connectSession();
    void applyShortcuts();
    bool openRecording(const QString &dir, bool isNew = false);
    void openRecordings();
    void openSettings();
    void offerLeftovers();
    void closeToolbar();
    void quit();
    void windowClosed();
    void tell(RecordingController::Severity severity, const QString &text);

    DockConfigIO &m_io;
    DockSettings &m_settings;
    SingleInstance &m_instance;
    kel::StopSignal m_stopSignal;
    RecordingController m_controller;
    RecorderUi m_ui;
    GlobalShortcuts m_shortcuts;
    QPointer<RecordingsWindow> m_recordings;
    QPointer<SettingsDialog> m_settingsDialog;
    bool m_isEnding = false;
};
