#include "play/PlaybackWindow.h"

#include "play/PlaybackPage.h"
#include "widgets/DockStyle.h"
#include "widgets/FileManager.h"
#include "widgets/MessagePage.h"
#include "widgets/WindowStore.h"

#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KelRecordingMetadata.h>

#include <QFileInfo>
#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>
#include <QStackedWidget>

#include <functional>

namespace
{

const QString kGeometryKey = QStringLiteral("PlaybackWindow/geometry");
constexpr QSize kMinimumSize(640, 400);
constexpr double kMaxShareOfScreen = 0.85;

} // namespace

PlaybackWindow::PlaybackWindow(const QString &recordingDir, QWidget *parent)
    : QMainWindow(parent)
    , m_dir(QFileInfo(recordingDir).absoluteFilePath())
    , m_watch(recordingDir)
    , m_pages(new QStackedWidget(this))
{
    setObjectName(QStringLiteral("PlaybackWindow"));
    setWindowTitle(QFileInfo(m_dir).fileName());
    applyDockStyle(this, QStringLiteral("Window"));
    setCentralWidget(m_pages);
    createMessagePage();
    connect(&m_watch, &DirectoryWatch::existsChanged, this,
            [this](bool exists) { exists ? handleDirectoryBack() : handleDirectoryLost(); });
    addShortcuts();
    load();
    restoreWindowGeometry();
}

PlaybackWindow::~PlaybackWindow()
{
    delete m_playback; // it uses the loaded recording, a member that is destroyed before the child widgets
}

void PlaybackWindow::setFromRecording(bool on)
{
    m_isFromRecording = on;
    if (m_playback)
        m_playback->setFromRecording(on);
}

void PlaybackWindow::load()
{
    delete m_playback;
    m_playback = nullptr;
    m_recorder.loadRecording(m_dir, KelPlaybackRules::recommended());
    const KelPlaybackTrackManager *const manager = m_recorder.playbackManager();
    if (manager && manager->isValidRecording()) {
        createPlaybackPage();
        showMetadataNotice();
    } else {
        showMessage(tr("This recording cannot be played"), manager ? manager->errorString() : m_recorder.lastError());
    }
}

void PlaybackWindow::createMessagePage()
{
    m_message = new MessagePage(KelDockIcon::Glyph::Warning, this);
    m_message->setObjectName(QStringLiteral("MessagePage"));
    m_message->addAction(tr("&Open Folder"), tr("Show the files of the recording in the file manager"),
                         [this] { openInFileManager(m_watch.exists() ? m_dir : QFileInfo(m_dir).path()); });
    m_message->addAction(tr("&Try Again"), tr("Load the recording again"), [this] { load(); });
    m_message->addAction(tr("&Close"), tr("Close this window"), [this] { close(); });
    m_pages->addWidget(m_message);
}

void PlaybackWindow::createPlaybackPage()
{
    m_playback = new PlaybackPage(m_recorder.playbackManager(), this);
    m_playback->setFromRecording(m_isFromRecording);
    connect(m_playback, &PlaybackPage::fullScreenToggled, this, &PlaybackWindow::toggleFullScreen);
    connect(m_playback, &PlaybackPage::recordAgainRequested, this, &PlaybackWindow::recordAgainRequested);
    connect(m_playback, &PlaybackPage::closeRequested, this, &QWidget::close);
    m_pages->addWidget(m_playback);
    m_pages->setCurrentWidget(m_playback);
    m_playback->setFocus();
}

/// Only shortcuts with a modifier. Other keys are handled in keyPressEvent() if no control wants them.
void PlaybackWindow::addShortcuts()
{
    const auto add = [this](const QKeySequence &keys, void (PlaybackPage::*action)()) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, [this, action] {
            if (isPlaybackShown())
                std::invoke(action, m_playback);
        });
    };
    add(Qt::CTRL + Qt::Key_E, &PlaybackPage::exportRecording);
    add(QKeySequence::Save, &PlaybackPage::saveFrame);
    add(QKeySequence::Copy, &PlaybackPage::copyFrame);
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
}

void PlaybackWindow::showMessage(const QString &title, const QString &detail)
{
    m_message->setMessage(title, detail);
    m_pages->setCurrentWidget(m_message);
    m_message->setFocus();
}

void PlaybackWindow::handleDirectoryLost()
{
    if (m_playback)
        m_playback->pause();
    if (isFullScreen())
        toggleFullScreen();
    showMessage(tr("This recording no longer exists"), tr("The folder %1 was moved, renamed or deleted.").arg(m_dir));
}

/// Does not reload a loaded recording, because an export may be using it.
void PlaybackWindow::handleDirectoryBack()
{
    if (m_playback)
        m_pages->setCurrentWidget(m_playback);
    else
        load();
}

void PlaybackWindow::showMetadataNotice()
{
    KelRecordingMetadata metadata;
    if (!KelRecordingMetadata::load(m_dir, &metadata)) {
        m_playback->showNotice(
            tr("The metadata of this recording is missing or damaged. It plays at %n frame(s) per second.", nullptr,
               m_recorder.playbackManager()->fps()));
    } else if (!metadata.complete) {
        m_playback->showNotice(
            tr("This recording was interrupted by a crash. Everything recorded before the crash was saved."));
    }
}

bool PlaybackWindow::isPlaybackShown() const
{
    return m_playback && m_pages->currentWidget() == m_playback;
}

void PlaybackWindow::toggleFullScreen()
{
    setWindowState(windowState() ^ Qt::WindowFullScreen);
}

void PlaybackWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange && m_playback)
        m_playback->setFullScreen(isFullScreen());
    QMainWindow::changeEvent(event);
}

void PlaybackWindow::restoreWindowGeometry()
{
    if (restoreGeometry(windowStore().value(kGeometryKey).toByteArray()))
        return;
    const QSize available = (QSizeF(screen()->availableSize()) * kMaxShareOfScreen).toSize();
    resize(sizeHint().expandedTo(kMinimumSize).boundedTo(available));
}

void PlaybackWindow::closeEvent(QCloseEvent *event)
{
    if (m_playback)
        m_playback->pause();
    if (!isFullScreen())
        windowStore().setValue(kGeometryKey, saveGeometry());
    QMainWindow::closeEvent(event);
}

void PlaybackWindow::keyPressEvent(QKeyEvent *event)
{
    const bool hasModifier = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (hasModifier || !isPlaybackShown() || !m_playback->handleKey(*event))
        QMainWindow::keyPressEvent(event);
}
