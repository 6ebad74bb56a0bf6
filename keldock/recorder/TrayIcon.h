#pragma once

#include "recorder/RecordingController.h"

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

/// The recorder's icon and menu in the system tray, if the desktop has one. GUI thread.
class TrayIcon : public QObject
{
    Q_OBJECT

public:
    explicit TrayIcon(QObject *parent = nullptr);

    /// Whether the desktop has a system tray.
    bool isAvailable() const;

    void showState(RecordingController::State state);
    void showElapsed(qint64 ms);

signals:
    void recordRequested();
    void pauseRequested();
    void stopRequested();
    void toolbarRequested();
    void recordingsRequested();
    void settingsRequested();
    void quitRequested();

private:
    void updateToolTip();

    QMenu m_menu;
    QAction *m_record;
    QAction *m_pause;
    QAction *m_stop;
    QSystemTrayIcon m_icon;
    RecordingController::State m_state = RecordingController::State::Idle;
    qint64 m_elapsedMs = 0;
};
