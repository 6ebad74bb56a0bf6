#include "recorder/RecorderUi.h"

#include "screen/KelWindowList.h"
#include "settings/DockSettings.h"

#include <KelMovie/KelConfigIO.h>
#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMovieConfigKeys.h>

#include <QCheckBox>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <utility>

using State = RecordingController::State;

namespace
{

constexpr int kHintSeconds = 2; // time to read how to stop a recording without the toolbar

/// The part of an area that is on the current screens; empty if too little is left.
QRect visiblePart(const QRect &area)
{
    AreaSelection selection(AreaPicker::desktop());
    selection.setRect(area);
    return selection.rect();
}

} // namespace

RecorderUi::RecorderUi(RecordingController &controller, const DockSettings &settings, KelConfigIO &io, QObject *parent)
    : QObject(parent)
    , m_controller(controller)
    , m_settings(settings)
    , m_io(io)
{
    m_controller.setArea(visiblePart(settings.lastArea()));
    connectToolbar();
    connectTray();
    // Queued because a question may follow, which must not open within the picker's key event.
    connect(&m_picker, &AreaPicker::picked, this, &RecorderUi::useArea, Qt::QueuedConnection);
    connect(&m_picker, &AreaPicker::cancelled, this, [this] {
        m_recordsAfterChoosing = false;
        endPicking();
    });
    connect(&m_countdown, &CountdownOverlay::cancelled, &m_controller, &RecordingController::stop);
    connect(&m_controller, &RecordingController::stateChanged, this, &RecorderUi::showState);
    connect(&m_controller, &RecordingController::countdown, this, &RecorderUi::showCountdown);
    connect(&m_controller, &RecordingController::elapsed, &m_toolbar, &RecordToolbar::showElapsed);
    connect(&m_controller, &RecordingController::elapsed, &m_tray, &TrayIcon::showElapsed);
}

void RecorderUi::connectToolbar()
{
    connect(&m_toolbar, &RecordToolbar::recordRequested, this, &RecorderUi::startRecording);
    connect(&m_toolbar, &RecordToolbar::stopRequested, &m_controller, &RecordingController::stop);
    connect(&m_toolbar, &RecordToolbar::pauseRequested, &m_controller, &RecordingController::togglePause);
    connect(&m_toolbar, &RecordToolbar::keysSwitched, &m_controller, &RecordingController::setKeysRecorded);
    connect(&m_toolbar, &RecordToolbar::mouseSwitched, &m_controller, &RecordingController::setMouseRecorded);
    connect(&m_toolbar, &RecordToolbar::areaRequested, this, &RecorderUi::chooseArea);
    connect(&m_toolbar, &RecordToolbar::hovered, this, &RecorderUi::previewArea);
    connect(&m_toolbar, &RecordToolbar::minimizeRequested, this, &RecorderUi::minimize);
    connect(&m_toolbar, &RecordToolbar::recordingsRequested, this, &RecorderUi::recordingsRequested);
    connect(&m_toolbar, &RecordToolbar::settingsRequested, this, &RecorderUi::settingsRequested);
    connect(&m_toolbar, &RecordToolbar::closeRequested, this, &RecorderUi::closeRequested);
}

void RecorderUi::connectTray()
{
    connect(&m_tray, &TrayIcon::recordRequested, this, &RecorderUi::startRecording);
    connect(&m_tray, &TrayIcon::stopRequested, &m_controller, &RecordingController::stop);
    connect(&m_tray, &TrayIcon::pauseRequested, &m_controller, &RecordingController::togglePause);
    connect(&m_tray, &TrayIcon::toolbarRequested, this, &RecorderUi::showToolbar);
    connect(&m_tray, &TrayIcon::recordingsRequested, this, &RecorderUi::recordingsRequested);
    connect(&m_tray, &TrayIcon::settingsRequested, this, &RecorderUi::settingsRequested);
    connect(&m_tray, &TrayIcon::quitRequested, this, &RecorderUi::quitRequested);
}

void RecorderUi::showToolbar()
{
    if (m_isChoosing)
        return;
    m_toolbarState = ToolbarState::Open;
    if (!m_toolbar.isVisible())
        m_toolbar.moveToStart(m_controller.area());
    m_toolbar.showNormal();
    m_toolbar.raise();
    m_toolbar.activateWindow();
}

void RecorderUi::hideToolbar(ToolbarState state)
{
    m_toolbarState = state;
    m_toolbar.hide();
    m_frame.hide();
}

void RecorderUi::minimize()
{
    m_toolbarState = ToolbarState::Minimized;
    if (m_tray.isAvailable())
        m_toolbar.hide();
    else
        m_toolbar.showMinimized();
}

void RecorderUi::chooseArea()
{
    if (m_controller.state() != State::Idle || m_isChoosing || m_isAsking)
        return;
    m_isChoosing = true;
    m_toolbar.hide();
    m_frame.hide();
    QTimer::singleShot(RecordingController::kScreenSettleMs, this, &RecorderUi::openPicker);
}

void RecorderUi::openPicker()
{
    m_picker.open(m_controller.area(), KelWindowList::windowRects());
}

void RecorderUi::useArea(const QRect &area)
{
    m_controller.setArea(area);
    DockSettings::saveArea(m_io, area);
    endPicking();
    m_frame.setLook(AreaFrame::Look::Ready);
    m_frame.showAround(area);
    if (std::exchange(m_recordsAfterChoosing, false))
        startRecording();
}

void RecorderUi::endPicking()
{
    m_isChoosing = false;
    showToolbar();
}

void RecorderUi::startRecording()
{
    if (m_controller.state() != State::Idle || m_isChoosing || m_isAsking)
        return;
    m_controller.setArea(visiblePart(m_controller.area()));
    if (m_controller.area().isEmpty()) {
        m_recordsAfterChoosing = true;
        chooseArea();
        return;
    }
    if (m_toolbarState == ToolbarState::SteppedAside || m_toolbarState == ToolbarState::Closed)
        showToolbar();
    if (!confirmRecordingKeys())
        return;
    // A toolbar in the recorded area is better than a recording that cannot be stopped.
    const bool canStopWithoutToolbar = m_tray.isAvailable() || !m_stopKeys.isEmpty();
    m_hidesWhileRecording = isToolbarSeen() && !m_toolbar.moveAwayFrom(m_controller.area()) && canStopWithoutToolbar;
    if (m_hidesWhileRecording)
        hideToolbar(ToolbarState::Minimized);
    m_controller.start(m_hidesWhileRecording ? kHintSeconds : 0);
}

/// Users may not expect that recorded keystrokes reveal passwords. False if the user cancels the recording.
bool RecorderUi::confirmRecordingKeys()
{
    if (!gKelMovieConfig.recordKeyboard || !m_settings.asksBeforeRecordingKeys)
        return true;
    QMessageBox box(QMessageBox::Warning, tr("Record keystrokes?"),
                    tr("Everything you type will be recorded in every program, including passwords."),
                    QMessageBox::NoButton, &m_toolbar);
    box.setInformativeText(tr("The keyboard button on the toolbar turns this off, even during a recording."));
    QPushButton *const with = box.addButton(tr("Record Keystrokes"), QMessageBox::AcceptRole);
    QPushButton *const without = box.addButton(tr("Record Without Keystrokes"), QMessageBox::DestructiveRole);
    box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(with);
    auto *const dontAsk = new QCheckBox(tr("Don't ask again"), &box);
    box.setCheckBox(dontAsk);
    m_isAsking = true;
    box.exec();
    m_isAsking = false;
    if (box.clickedButton() != with && box.clickedButton() != without)
        return false;
    if (dontAsk->isChecked())
        m_io.saveBool(DockSettings::kAsksBeforeRecordingKeysKey, false);
    if (box.clickedButton() == without) {
        m_io.saveBool(KelMovieConfigKeys::kRecordKeyboard, false);
        m_toolbar.refresh();
    }
    return m_controller.state() == State::Idle;
}

void RecorderUi::showState(State state)
{
    m_toolbar.showState(state);
    m_tray.showState(state);
    m_frame.setLook(state == State::Recording ? AreaFrame::Look::Recording
                    : state == State::Paused  ? AreaFrame::Look::Paused
                                              : AreaFrame::Look::Ready);
    if (state != State::Idle) {
        m_frame.showAround(m_controller.area());
        return;
    }
    m_frame.hide();
    m_countdown.hide();
    if (std::exchange(m_hidesWhileRecording, false))
        showToolbar();
}

void RecorderUi::showCountdown(int secondsLeft)
{
    QString hint = tr("Press Esc to cancel");
    if (m_hidesWhileRecording && !m_stopKeys.isEmpty())
        hint = tr("Press %1 to stop the recording").arg(m_stopKeys) + QLatin1Char('\n') + hint;
    m_countdown.showSeconds(secondsLeft, m_controller.area(), hint);
    m_toolbar.showElapsed(-secondsLeft * qint64(1000));
}

void RecorderUi::previewArea(bool shown)
{
    if (m_controller.state() == State::Idle)
        m_frame.showAround(shown && !m_isChoosing ? m_controller.area() : QRect());
}
