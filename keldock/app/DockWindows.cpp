#include "app/DockWindows.h"

#include "library/RecordingsFolder.h"
#include "library/RecordingsWindow.h"
#include "play/PlaybackWindow.h"
#include "recorder/RecordingController.h"
#include "settings/DockConfigIO.h"
#include "settings/DockSettings.h"
#include "settings/SettingsDialog.h"

#include <QApplication>
#include <QFileInfo>
#include <QTimer>

#include <algorithm>

namespace
{

void bringToFront(QWidget *window)
{
    window->show();
    window->raise();
    window->activateWindow();
}

} // namespace

DockWindows::DockWindows(DockConfigIO &io, const DockSettings &settings, QObject *parent)
    : QObject(parent)
    , m_io(io)
    , m_settings(settings)
{
}

bool DockWindows::openRecording(const QString &dir, bool isNew)
{
    if (!QFileInfo(dir).isDir())
        return false;
    auto *const window = new PlaybackWindow(dir);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setFromRecording(isNew);
    connect(window, &QObject::destroyed, this, [this] { m_io.saveChanges(); });
    connect(window, &PlaybackWindow::recordAgainRequested, this, [this, window] {
        window->close(); // it would be in the new recording
        QTimer::singleShot(RecordingController::kScreenSettleMs, this, &DockWindows::recordRequested);
    });
    bringToFront(window);
    return true;
}

void DockWindows::openRecordings()
{
    if (!m_recordings) {
        m_recordings = new RecordingsWindow(RecordingsFolder(m_settings.recordingsFolder).root());
        m_recordings->setAttribute(Qt::WA_DeleteOnClose);
        m_recordings->setActiveRecording(m_activeRecording);
        connect(m_recordings, &RecordingsWindow::openRequested, this,
                [this](const QString &dir) { openRecording(dir); });
        connect(m_recordings, &RecordingsWindow::recordRequested, this, &DockWindows::recordRequested);
    }
    bringToFront(m_recordings);
}

void DockWindows::openSettings()
{
    if (!m_settingsDialog) {
        m_settingsDialog = new SettingsDialog(m_settings, m_io);
        m_settingsDialog->setAttribute(Qt::WA_DeleteOnClose);
        m_settingsDialog->setRecording(!m_activeRecording.isEmpty());
        connect(m_settingsDialog, &SettingsDialog::changed, this, &DockWindows::settingsChanged);
        connect(m_settingsDialog, &SettingsDialog::shortcutEditBegun, this, &DockWindows::shortcutEditBegun);
        connect(m_settingsDialog, &SettingsDialog::shortcutEditEnded, this, &DockWindows::shortcutEditEnded);
        connect(m_settingsDialog, &SettingsDialog::folderChanged, this, [this] { delete m_recordings; });
    }
    bringToFront(m_settingsDialog);
}

void DockWindows::setActiveRecording(const QString &dir)
{
    m_activeRecording = dir;
    if (m_recordings)
        m_recordings->setActiveRecording(dir);
    if (m_settingsDialog)
        m_settingsDialog->setRecording(!dir.isEmpty());
}

bool DockWindows::showShortcutProblems(const QString &problems)
{
    if (!m_settingsDialog)
        return false;
    m_settingsDialog->showShortcutProblems(problems);
    return true;
}

bool DockWindows::isAnyOpen()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [](const QWidget *window) {
        return window->isVisible() && window->testAttribute(Qt::WA_QuitOnClose);
    });
}
