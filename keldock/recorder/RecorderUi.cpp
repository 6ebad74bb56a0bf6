#include "recorder/RecorderUi.h"

#include "screen/KelWindowList.h"
#include "settings/DockSettings.h"

#include <KelMovie/KelConfigIO.h>
#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMovieConfigKeys.h>

#include <QCheckBox>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>

#include <utility>

using State = RecordingController::State;

namespace
{

constexpr int ScreenSettlesMs = 150; // until windows that were hidden are gone from the still pictures
constexpr int HintSeconds = 2;       // to read how a recording is ended whose toolbar is not seen

/// What is left of an area on the screens that there are now.
QRect onScreens(const QRect &area)
{
    QRect desktop;
    for (const QScreen *screen : QGuiApplication::screens())
        desktop |= screen->geometry();
    AreaSelection selection(desktop);
    selection.setRect(area);
    return selection.rect();
}

} // namespace

RecorderUi::RecorderUi(RecordingController &controller, const DockSettings &settings, KelConfigIO &io, QObject *parent)
    : QObject(parent)
    , m_controller(controller)
    , m_io(io)
{
    m_controller.setArea(onScreens(settings.lastArea()));
    connectToolbar();
    connectTray();
    // Queued: what follows may ask a question, which is not to be done from within the picker's own key event.
    connect(&m_picker, &AreaPicker::picked, this, &RecorderUi::takeArea, Qt::QueuedConnection);
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
    connect(&m_toolbar, &RecordToolbar::recordRequested, this, &RecorderUi::record);
    connect(&m_toolbar, &RecordToolbar::stopRequested, &m_controller, &RecordingController::stop);
    connect(&m_toolbar, &RecordToolbar::pauseRequested, &m_controller, &RecordingController::togglePause);
    connect(&m_toolbar, &RecordToolbar::keysSwitched, &m_controller, &RecordingController::setKeysRecorded);
    connect(&m_toolbar, &RecordToolbar::mouseSwitched, &m_controller, &RecordingController::setMouseRecorded);
    connect(&m_toolbar, &RecordToolbar::areaRequested, this, &RecorderUi::chooseArea);
    connect(&m_toolbar, &RecordToolbar::hovered, this, &RecorderUi::showFrameWhileIdle);
    connect(&m_toolbar, &RecordToolbar::minimizeRequested, this, &RecorderUi::minimize);
    connect(&m_toolbar, &RecordToolbar::recordingsRequested, this, &RecorderUi::recordingsRequested);
    connect(&m_toolbar, &RecordToolbar::settingsRequested, this, &RecorderUi::settingsRequested);
    connect(&m_toolbar, &RecordToolbar::closeRequested, this, &RecorderUi::closeRequested);
}

void RecorderUi::connectTray()
{
    connect(&m_tray, &TrayIcon::recordRequested, this, &RecorderUi::record);
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
    m_place = Place::Open;
    if (!m_toolbar.isVisible())
        m_toolbar.appearBeside(m_controller.area());
    m_toolbar.showNormal();
    m_toolbar.raise();
    m_toolbar.activateWindow();
}

void RecorderUi::hideToolbar(Place place)
{
    m_place = place;
    m_toolbar.hide();
    m_frame.hide();
}

void RecorderUi::minimize()
{
    m_place = Place::Minimized;
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
    QTimer::singleShot(ScreenSettlesMs, this, &RecorderUi::openPicker);
}

void RecorderUi::openPicker()
{
    m_picker.open(m_controller.area(), KelWindowList::windowRects());
}

void RecorderUi::takeArea(const QRect &area)
{
    m_controller.setArea(area);
    DockSettings::saveArea(m_io, area);
    endPicking();
    m_frame.setLook(AreaFrame::Look::Ready);
    m_frame.frame(area);
    if (std::exchange(m_recordsAfterChoosing, false))
        record();
}

void RecorderUi::endPicking()
{
    m_isChoosing = false;
    showToolbar();
}

void RecorderUi::record()
{
    if (m_controller.state() != State::Idle || m_isChoosing || m_isAsking)
        return;
    m_controller.setArea(onScreens(m_controller.area()));
    if (m_controller.area().isEmpty()) {
        m_recordsAfterChoosing = true;
        chooseArea();
        return;
    }
    if (m_place == Place::Aside || m_place == Place::Closed)
        showToolbar();
    if (!mayRecordKeys())
        return;
    // Who could not stop the recording without the toolbar rather sees it in the picture.
    const bool canStopWithout = m_tray.isAvailable() || !m_stopKeys.isEmpty();
    m_hidesWhileRecording = isToolbarSeen() && !m_toolbar.makeWayFor(m_controller.area()) && canStopWithout;
    if (m_hidesWhileRecording)
        hideToolbar(Place::Minimized);
    m_controller.start(m_hidesWhileRecording ? HintSeconds : 0);
}

/// Recorded keys give passwords away, which not everybody thinks of. False when the person wants to think it over.
bool RecorderUi::mayRecordKeys()
{
    if (!gKelMovieConfig.recordKeyboard || gKelMovieConfig.recordDontShowRecordingWarning)
        return true;
    QMessageBox box(QMessageBox::Warning, tr("Recording keys"),
                    tr("The keys that you type will be recorded, in whichever program: passwords, too."),
                    QMessageBox::NoButton, &m_toolbar);
    box.setInformativeText(tr("The keyboard button of the toolbar switches them off, also during a recording."));
    QPushButton *const with = box.addButton(tr("Record keys"), QMessageBox::AcceptRole);
    QPushButton *const without = box.addButton(tr("Record without keys"), QMessageBox::DestructiveRole);
    box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(with);
    auto *const dontAsk = new QCheckBox(tr("Do not ask again"), &box);
    box.setCheckBox(dontAsk);
    m_isAsking = true;
    box.exec();
    m_isAsking = false;
    if (box.clickedButton() != with && box.clickedButton() != without)
        return false;
    if (dontAsk->isChecked())
        m_io.saveBool(KelMovieConfigKeys::kRecordDontShowRecordingWarning, true);
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
        m_frame.frame(m_controller.area());
        return;
    }
    m_frame.hide();
    m_countdown.hide();
    if (std::exchange(m_hidesWhileRecording, false))
        showToolbar();
}

void RecorderUi::showCountdown(int secondsLeft)
{
    QString hint = tr("Esc cancels");
    if (m_hidesWhileRecording && !m_stopKeys.isEmpty())
        hint = tr("%1 stops the recording").arg(m_stopKeys) + QLatin1Char('\n') + hint;
    m_countdown.count(secondsLeft, m_controller.area(), hint);
    m_toolbar.showElapsed(-secondsLeft * qint64(1000));
}

void RecorderUi::showFrameWhileIdle(bool shown)
{
    if (m_controller.state() == State::Idle)
        m_frame.frame(shown && !m_isChoosing ? m_controller.area() : QRect());
}
