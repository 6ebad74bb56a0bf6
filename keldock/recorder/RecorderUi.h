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

/// What a person sees of the recorder, and keeps it out of the picture: toolbar, area picker, countdown, frame, tray
/// icon. GUI thread.
class RecorderUi : public QObject
{
    Q_OBJECT

public:
    RecorderUi(RecordingController &controller, const DockSettings &settings, KelConfigIO &io,
               QObject *parent = nullptr);

    /// Where the toolbar is.
    enum class Place {
        Open,
        Minimized, ///< until the person wants it back
        Aside,     ///< until the windows that it would cover are closed
        Closed
    };

    RecordToolbar &toolbar() { return m_toolbar; }
    Place place() const { return m_place; }
    bool isToolbarSeen() const { return m_toolbar.isVisible() && !m_toolbar.isMinimized(); }
    /// Told at the bottom of the countdown when the toolbar has to hide; empty when there are none.
    void setStopKeys(const QString &keys) { m_stopKeys = keys; }

public slots:
    void showToolbar();
    /// `place` tells until when.
    void hideToolbar(Place place);
    /// Into the tray, or to where the desktop keeps small windows.
    void minimize();
    void chooseArea();
    /// Starts a recording; has the area chosen first when there is none.
    void record();

signals:
    void recordingsRequested();
    void settingsRequested();
    void closeRequested();
    void quitRequested();

private:
    void connectToolbar();
    void connectTray();
    void openPicker();
    void takeArea(const QRect &area);
    void endPicking();
    bool mayRecordKeys();
    void showState(RecordingController::State state);
    void showCountdown(int secondsLeft);
    void showFrameWhileIdle(bool shown);

    RecordingController &m_controller;
    KelConfigIO &m_io;
    RecordToolbar m_toolbar;
    AreaPicker m_picker;
    AreaFrame m_frame;
    CountdownOverlay m_countdown;
    TrayIcon m_tray;
    QString m_stopKeys;
    Place m_place = Place::Closed;
    bool m_isChoosing = false;
    bool m_isAsking = false; // shortcuts and tray icon work on while a question is open
    bool m_recordsAfterChoosing = false;
    bool m_hidesWhileRecording = false;
};
