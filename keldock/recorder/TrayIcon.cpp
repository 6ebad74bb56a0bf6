#include "recorder/TrayIcon.h"

#include "common/Units.h"
#include "dockicon/KelDockIcon.h"
#include "widgets/DockColors.h"

using KelDockIcon::Glyph;
using State = RecordingController::State;

TrayIcon::TrayIcon(QObject *parent)
    : QObject(parent)
    , m_record(m_menu.addAction(tr("Record"), this, &TrayIcon::recordRequested))
    , m_pause(m_menu.addAction(tr("Pause"), this, &TrayIcon::pauseRequested))
    , m_stop(m_menu.addAction(tr("Stop"), this, &TrayIcon::stopRequested))
{
    m_menu.addSeparator();
    m_menu.addAction(tr("Show toolbar"), this, &TrayIcon::toolbarRequested);
    m_menu.addAction(tr("Recordings"), this, &TrayIcon::recordingsRequested);
    m_menu.addAction(tr("Settings"), this, &TrayIcon::settingsRequested);
    m_menu.addSeparator();
    m_menu.addAction(tr("Quit"), this, &TrayIcon::quitRequested);
    m_icon.setContextMenu(&m_menu);
    connect(&m_icon, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
            emit toolbarRequested();
    });
    showState(State::Idle);
    m_icon.show();
}

bool TrayIcon::isAvailable() const
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void TrayIcon::showState(State state)
{
    m_state = state;
    const bool isRecording = state == State::Recording || state == State::Paused;
    m_record->setEnabled(state == State::Idle);
    m_pause->setEnabled(isRecording);
    m_pause->setText(state == State::Paused ? tr("Resume") : tr("Pause"));
    m_stop->setEnabled(state != State::Idle);
    const Glyph glyph = state == State::Paused ? Glyph::Pause : isRecording ? Glyph::Record : Glyph::Screen;
    m_icon.setIcon(KelDockIcon::icon(glyph, isRecording ? DockColors::kRecording : DockColors::kReady));
    updateToolTip();
}

void TrayIcon::showElapsed(qint64 ms)
{
    if (ms / 1000 == m_elapsedMs / 1000)
        return;
    m_elapsedMs = ms;
    updateToolTip();
}

void TrayIcon::updateToolTip()
{
    switch (m_state) {
    case State::Idle:
        m_icon.setToolTip(tr("Screen recorder"));
        break;
    case State::CountingDown:
        m_icon.setToolTip(tr("Recording starts soon"));
        break;
    case State::Recording:
        m_icon.setToolTip(tr("Recording, %1").arg(Units::clock(m_elapsedMs)));
        break;
    case State::Paused:
        m_icon.setToolTip(tr("Recording paused, %1").arg(Units::clock(m_elapsedMs)));
        break;
    }
}
