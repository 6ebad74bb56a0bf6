#include "app/DockApplication.h"

#include "app/Translations.h"
#include "library/RecordingsFolder.h"
#include "library/RecordingsWindow.h"
#include "notification/KelMsgBox.h"
#include "notification/KelToastsMessage.h"
#include "play/PlaybackWindow.h"
#include "settings/SettingsDialog.h"
#include "style/KelStyleTheme.h"
#include "widgets/ProgramIcon.h"

#include <KelMovie/KelMovieConfig.h>

#include <console/Terminal.h>

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QSessionManager>
#include <QTimer>

#include <cstdio>

using namespace kel;

namespace
{

constexpr int WarningMs = 8000;
constexpr const char *Offscreen = "offscreen";

/// Without a display Qt's ordinary platform ends the process without a word that helps. With a second choice the
/// program can say what is wrong.
bool hasDisplay(const QByteArray &wantedPlatform)
{
    return QGuiApplication::platformName() != QLatin1String(Offscreen) || wantedPlatform == Offscreen;
}

void applyTheme(const DockSettings &settings)
{
    using Mode = KelStyleTheme::Mode;
    KelStyleTheme::instance()->setMode(settings.theme == 1   ? Mode::Light
                                       : settings.theme == 2 ? Mode::Dark
                                                             : Mode::System);
}

void bringToFront(QWidget *window)
{
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace

int DockApplication::run(int argc, char **argv)
{
    const QByteArray wantedPlatform = qgetenv("QT_QPA_PLATFORM");
    if (wantedPlatform.isEmpty())
        qputenv("QT_QPA_PLATFORM", QByteArray(Terminal::desktopPlatform()) + ';' + Offscreen);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    if (!hasDisplay(wantedPlatform)) {
        std::fputs("keldock: there is no display to open a window on; what works without: keldock --help\n", stderr);
        return 1;
    }
    QCoreApplication::setApplicationName(QStringLiteral("keldock"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KELDOCK_VERSION));
    // Which window is the last one is decided here: the toolbar may be hidden while the program goes on.
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(programIcon());

    SingleInstance instance;
    if (!instance.claim())
        return 0;
    DockConfigIO io;
    KelMovieConfigInit(&io);
    DockSettings settings;
    settings.bind(io);
    Translations::install(settings.language);
    // Before there are widgets: Qt does not see that the style sheet of one that was never shown has changed.
    applyTheme(settings);
    int status = 0;
    {
        DockApplication dock(io, settings, instance);
        dock.start();
        status = QApplication::exec();
    }
    KelMovieConfigInit(nullptr);
    return status;
}

DockApplication::DockApplication(DockConfigIO &io, DockSettings &settings, SingleInstance &instance)
    : m_io(io)
    , m_settings(settings)
    , m_instance(instance)
    , m_controller([this] { return RecordingsFolder(m_settings.recordingsFolder).newRecordingDir(); })
    , m_ui(m_controller, settings, io)
{
    connectRecorder();
    connectSession();
}

DockApplication::~DockApplication()
{
    m_isEnding = true;
    m_controller.stop();
    m_io.saveFonts();
}

void DockApplication::start()
{
    applyShortcuts();
    m_ui.showToolbar();
    if (!m_io.problem().isEmpty())
        tell(RecordingController::Severity::Warning, m_io.problem());
    connect(&m_io, &DockConfigIO::problemFound, this,
            [this](const QString &problem) { tell(RecordingController::Severity::Warning, problem); });
    QTimer::singleShot(0, this, &DockApplication::offerLeftovers);
}

void DockApplication::connectRecorder()
{
    connect(&m_ui, &RecorderUi::recordingsRequested, this, &DockApplication::openRecordings);
    connect(&m_ui, &RecorderUi::settingsRequested, this, &DockApplication::openSettings);
    connect(&m_ui, &RecorderUi::closeRequested, this, &DockApplication::closeToolbar);
    connect(&m_ui, &RecorderUi::quitRequested, this, &DockApplication::quit);
    connect(&m_controller, &RecordingController::problem, this, &DockApplication::tell);
    connect(&m_controller, &RecordingController::finished, this, [this](const QString &dir) {
        // Being on top of all windows it would cover the one that has just opened.
        if (openRecording(dir, true) && m_ui.isToolbarSeen())
            m_ui.hideToolbar(RecorderUi::Place::Aside);
    });
    connect(&m_controller, &RecordingController::stateChanged, this, [this](RecordingController::State state) {
        if (m_recordings)
            m_recordings->setActiveRecording(m_controller.directory());
        using State = RecordingController::State;
        const bool isInPicture = state == State::CountingDown || state == State::Recording;
        KelToastsMessage::avoid(isInPicture ? m_controller.area() : QRect());
    });
    connect(&m_shortcuts, &GlobalShortcuts::recordPressed, &m_ui, &RecorderUi::record);
    connect(&m_shortcuts, &GlobalShortcuts::pausePressed, &m_controller, &RecordingController::togglePause);
    connect(&m_shortcuts, &GlobalShortcuts::stopPressed, &m_controller, &RecordingController::stop);
}

void DockApplication::connectSession()
{
    connect(&m_instance, &SingleInstance::startedAgain, &m_ui, &RecorderUi::showToolbar);
    connect(&m_stopSignal, &StopSignal::raised, this, &DockApplication::quit);
    connect(qApp, &QApplication::lastWindowClosed, this, &DockApplication::windowClosed);
    // The desktop may give up logging out after this; the program then goes on, without a recording.
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
    m_ui.setStopKeys(m_shortcuts.stopKeys().toString(QKeySequence::NativeText));
    if (m_settingsDialog)
        m_settingsDialog->showShortcutProblems(problems);
    else if (!problems.isEmpty())
        tell(RecordingController::Severity::Warning, problems);
}

bool DockApplication::openRecording(const QString &dir, bool isNew)
{
    if (m_recordings)
        m_recordings->refresh();
    if (m_isEnding || !QFileInfo(dir).isDir())
        return false;
    auto *const window = new PlaybackWindow(dir);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setFromRecording(isNew);
    connect(window, &PlaybackWindow::recordAgainRequested, this, [this] {
        m_ui.showToolbar();
        m_ui.record();
    });
    bringToFront(window);
    return true;
}

void DockApplication::openRecordings()
{
    if (!m_recordings) {
        m_recordings = new RecordingsWindow(RecordingsFolder(m_settings.recordingsFolder).root());
        m_recordings->setAttribute(Qt::WA_DeleteOnClose);
        m_recordings->setActiveRecording(m_controller.directory());
        connect(m_recordings, &RecordingsWindow::openRequested, this,
                [this](const QString &dir) { openRecording(dir); });
        connect(m_recordings, &RecordingsWindow::recordRequested, this, [this] {
            m_ui.showToolbar();
            m_ui.record();
        });
    }
    bringToFront(m_recordings);
}

void DockApplication::openSettings()
{
    if (!m_settingsDialog) {
        m_settingsDialog = new SettingsDialog(m_settings, m_io);
        m_settingsDialog->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_settingsDialog, &SettingsDialog::changed, this, [this] {
            applyTheme(m_settings);
            m_ui.toolbar().refresh();
        });
        // Or the combination that is pressed to choose it would do what it is for.
        connect(m_settingsDialog, &SettingsDialog::shortcutEditBegun, &m_shortcuts, &GlobalShortcuts::suspend);
        connect(m_settingsDialog, &SettingsDialog::shortcutEditEnded, this, &DockApplication::applyShortcuts);
        connect(m_settingsDialog, &SettingsDialog::folderChanged, this, [this] { delete m_recordings; });
    }
    bringToFront(m_settingsDialog);
}

/// Once for each of them: who does not want to look now finds it in the list.
void DockApplication::offerLeftovers()
{
    const QStringList leftovers = RecordingsFolder(m_settings.recordingsFolder).leftovers(m_controller.directory());
    const QString known = m_settings.offeredLeftovers;
    m_io.saveString(DockSettings::OfferedLeftoversKey, leftovers.join(QLatin1Char('\n')));
    for (const QString &dir : leftovers) {
        if (known.split(QLatin1Char('\n')).contains(dir))
            continue;
        const auto answer = KelMsgBox::question(
            &m_ui.toolbar(), tr("Interrupted recording"),
            tr("The recording \"%1\" was interrupted before it was complete. What was recorded is kept. Open it now?")
                .arg(QFileInfo(dir).fileName()));
        if (answer == QMessageBox::Yes)
            openRecording(dir);
    }
}

void DockApplication::closeToolbar()
{
    if (m_controller.state() != RecordingController::State::Idle) {
        m_controller.stop();
        return;
    }
    m_ui.hideToolbar(RecorderUi::Place::Closed);
    windowClosed();
}

void DockApplication::quit()
{
    m_isEnding = true;
    m_controller.stop();
    QApplication::quit();
}

/// Nothing else is open: brings the toolbar back, or ends the program that has none.
void DockApplication::windowClosed()
{
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->testAttribute(Qt::WA_QuitOnClose))
            return;
    }
    if (m_ui.place() == RecorderUi::Place::Aside)
        m_ui.showToolbar();
    else if (m_ui.place() == RecorderUi::Place::Closed && m_controller.state() == RecordingController::State::Idle)
        quit();
}

void DockApplication::tell(RecordingController::Severity severity, const QString &text)
{
    if (m_isEnding)
        return;
    const bool isError = severity == RecordingController::Severity::Error;
    KelToastsMessage::showMessage(nullptr, isError ? KelToastsMessage::Error : KelToastsMessage::Warning, text,
                                  WarningMs, !isError, true);
}
