#include "app/DockApplication.h"

#include "app/SingleInstance.h"
#include "library/RecordingsFolder.h"
#include "notification/KelMsgBox.h"
#include "notification/KelToastsMessage.h"
#include "settings/DockConfigIO.h"
#include "settings/DockSettings.h"
#include "style/KelStyleTheme.h"

#include <KelMovie/KelMovieSelfTest.h>
#include <KelMovie/KelMovieUI.h>

#include <QApplication>
#include <QFileInfo>
#include <QSessionManager>
#include <QTimer>

using namespace kel;
using Severity = RecordingController::Severity;
using State = RecordingController::State;

namespace
{

constexpr int kProblemMs = 8000;

} // namespace

void applyTheme(const DockSettings &settings)
{
    using Mode = KelStyleTheme::Mode;
    KelStyleTheme::instance()->setMode(settings.theme == 1   ? Mode::Light
                                       : settings.theme == 2 ? Mode::Dark
                                                             : Mode::System);
}

DockApplication::DockApplication(DockConfigIO &io, DockSettings &settings, SingleInstance &instance)
    : m_io(io)
    , m_settings(settings)
    , m_controller([this] { return RecordingsFolder(m_settings.recordingsFolder).newRecordingDir(); })
    , m_ui(m_controller, settings, io)
    , m_windows(io, settings)
{
    connectRecorder();
    connectWindows();
    connectSession();
    connect(&instance, &SingleInstance::startedAgain, &m_ui, &RecorderUi::showToolbar);
}

DockApplication::~DockApplication()
{
    m_isEnding = true;
    m_controller.stop();
    m_io.saveChanges();
}

void DockApplication::start()
{
    KelMovieUI::setReadsInputDevices(m_settings.readsInputDevices);
    applyShortcuts();
    m_ui.showToolbar();
    const QString screenProblem = KelMovieSelfTest::screenProblem();
    if (!screenProblem.isEmpty())
        showProblem(Severity::Error, screenProblem);
    if (!m_io.problem().isEmpty())
        showProblem(Severity::Warning, m_io.problem());
    connect(&m_io, &DockConfigIO::problemFound, this,
            [this](const QString &problem) { showProblem(Severity::Warning, problem); });
    QTimer::singleShot(0, this, &DockApplication::offerInterruptedRecordings);
}

void DockApplication::connectRecorder()
{
    connect(&m_ui, &RecorderUi::recordingsRequested, &m_windows, &DockWindows::openRecordings);
    connect(&m_ui, &RecorderUi::settingsRequested, &m_windows, &DockWindows::openSettings);
    connect(&m_ui, &RecorderUi::closeRequested, this, &DockApplication::closeToolbar);
    connect(&m_ui, &RecorderUi::quitRequested, this, &DockApplication::quit);
    connect(&m_controller, &RecordingController::problem, this, &DockApplication::showProblem);
    connect(&m_controller, &RecordingController::finished, this, &DockApplication::openFinishedRecording);
    connect(&m_controller, &RecordingController::stateChanged, this, &DockApplication::followState);
    connect(&m_shortcuts, &GlobalShortcuts::recordPressed, &m_ui, &RecorderUi::startRecording);
    connect(&m_shortcuts, &GlobalShortcuts::pausePressed, &m_controller, &RecordingController::togglePause);
    connect(&m_shortcuts, &GlobalShortcuts::changed, this, [this](const QString &problem) {
        m_ui.setStopKeys(m_shortcuts.stopKeys());
        if (!problem.isEmpty())
            showProblem(Severity::Warning, problem);
    });
    connect(&m_shortcuts, &GlobalShortcuts::stopPressed, &m_controller, &RecordingController::stop);
}

void DockApplication::connectWindows()
{
    connect(&m_windows, &DockWindows::recordRequested, this, &DockApplication::record);
    connect(&m_windows, &DockWindows::settingsChanged, this, [this] {
        applyTheme(m_settings);
        KelMovieUI::setReadsInputDevices(m_settings.readsInputDevices);
        m_ui.toolbar().refresh();
    });
    connect(&m_windows, &DockWindows::shortcutEditBegun, &m_shortcuts, &GlobalShortcuts::suspend);
    connect(&m_windows, &DockWindows::shortcutEditEnded, this, &DockApplication::applyShortcuts);
}

void DockApplication::connectSession()
{
    connect(&m_stopSignal, &StopSignal::raised, this, &DockApplication::quit);
    connect(qApp, &QApplication::lastWindowClosed, this, &DockApplication::handleLastWindowClosed);
    // The user may still cancel the logout: the recording is saved, and the program continues to run.
    connect(qApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager &session) {
        session.setRestartHint(QSessionManager::RestartNever);
        m_isEnding = true;
        m_controller.stop();
        m_isEnding = false;
    });
}

void DockApplication::applyShortcuts()
{
    const QString problems = m_shortcuts.apply(m_settings);
    m_controller.setShortcuts(m_shortcuts.controlKeys());
    m_ui.setStopKeys(m_shortcuts.stopKeys());
    if (!m_windows.showShortcutProblems(problems) && !problems.isEmpty())
        showProblem(Severity::Warning, problems);
}

void DockApplication::record()
{
    m_ui.showToolbar();
    m_ui.startRecording();
}

void DockApplication::openFinishedRecording(const QString &dir)
{
    // The toolbar stays on top of all windows and would cover the one that opens.
    if (!m_isEnding && m_windows.openRecording(dir, true) && m_ui.isToolbarSeen())
        m_ui.hideToolbar(RecorderUi::ToolbarState::SteppedAside);
}

void DockApplication::followState(State state)
{
    m_windows.setActiveRecording(m_controller.directory());
    const bool isCapturing = state == State::CountingDown || state == State::Recording;
    KelToastsMessage::avoid(isCapturing ? m_controller.area() : QRect());
}

/// Each recording is offered once. After that the user finds it in the list of recordings.
void DockApplication::offerInterruptedRecordings()
{
    const QStringList interrupted = RecordingsFolder(m_settings.recordingsFolder).interrupted(m_controller.directory());
    const QStringList offeredBefore = m_settings.offeredRecordings.split(QLatin1Char('\n'));
    m_io.saveString(DockSettings::kOfferedRecordingsKey, interrupted.join(QLatin1Char('\n')));
    for (const QString &dir : interrupted) {
        if (offeredBefore.contains(dir))
            continue;
        const auto answer = KelMsgBox::question(
            &m_ui.toolbar(), tr("Interrupted recording"),
            tr("The recording \"%1\" was interrupted. Everything up to the interruption was saved. Open it now?")
                .arg(QFileInfo(dir).fileName()));
        if (answer == QMessageBox::Yes && !m_isEnding)
            m_windows.openRecording(dir);
    }
}

void DockApplication::closeToolbar()
{
    if (m_controller.state() != State::Idle) {
        m_controller.stop();
        return;
    }
    m_ui.hideToolbar(RecorderUi::ToolbarState::Closed);
    handleLastWindowClosed();
}

void DockApplication::quit()
{
    m_isEnding = true;
    m_controller.stop();
    QApplication::quit();
}

/// If no other window is open: brings back a toolbar that has stepped aside, or ends the program if the user has closed
/// the toolbar.
void DockApplication::handleLastWindowClosed()
{
    if (DockWindows::isAnyOpen())
        return;
    if (m_ui.toolbarState() == RecorderUi::ToolbarState::SteppedAside)
        m_ui.showToolbar();
    else if (m_ui.toolbarState() == RecorderUi::ToolbarState::Closed && m_controller.state() == State::Idle)
        quit();
}

void DockApplication::showProblem(Severity severity, const QString &text)
{
    if (m_isEnding)
        return;
    const bool isError = severity == Severity::Error;
    KelToastsMessage::showMessage(nullptr, isError ? KelToastsMessage::Error : KelToastsMessage::Warning, text,
                                  kProblemMs, !isError, true);
}
