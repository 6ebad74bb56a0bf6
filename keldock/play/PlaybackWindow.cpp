#include "play/PlaybackWindow.h"

#include "notification/KelMsgBox.h"
#include "notification/KelToastsMessage.h"
#include "play/DirectoryWatch.h"
#include "play/FullScreenControls.h"
#include "play/PlaybackCanvas.h"
#include "play/PlaybackStrip.h"
#include "play/SettingsSidebar.h"
#include "play/export/RecordingExport.h"
#include "play/player/Player.h"
#include "widgets/DockStyle.h"
#include "widgets/FileManager.h"
#include "widgets/MessagePage.h"
#include "widgets/NoticeBar.h"
#include "widgets/WindowStore.h"

#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KelRecordingMetadata.h>

#include <QBoxLayout>
#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QSaveFile>
#include <QScreen>
#include <QShortcut>
#include <QStackedWidget>

namespace
{

const QString kGeometryKey = QStringLiteral("PlaybackWindow/geometry");
const QString kSettingsShownKey = QStringLiteral("PlaybackWindow/settingsShown");
constexpr int kStepMs = 1000;
constexpr QSize kSmallestSize(640, 400);
constexpr double kShareOfScreen = 0.85;

} // namespace

class PlaybackWindow::Private
{
public:
    explicit Private(const QString &recordingDir)
        : dir(QFileInfo(recordingDir).absoluteFilePath())
        , watch(recordingDir)
    {
    }

    const QString dir;
    KelMultiTrackRecorder recorder; // owns the loaded recording
    DirectoryWatch watch;
    bool isFromRecording = false;
    QStackedWidget *pages = nullptr;
    MessagePage *message = nullptr;
    // All of these are null while there is nothing to play.
    QWidget *playback = nullptr;
    Player *player = nullptr;
    PlaybackCanvas *canvas = nullptr;
    PlaybackStrip *strip = nullptr;
    NoticeBar *notice = nullptr;
    SettingsSidebar *settings = nullptr;
    FullScreenControls *fullScreenControls = nullptr;
    RecordingExport *exporter = nullptr;
};

PlaybackWindow::PlaybackWindow(const QString &recordingDir, QWidget *parent)
    : QMainWindow(parent)
    , d(std::make_unique<Private>(recordingDir))
{
    setObjectName(QStringLiteral("PlaybackWindow"));
    setWindowTitle(QFileInfo(d->dir).fileName());
    applyDockStyle(this, QStringLiteral("Window"));
    d->pages = new QStackedWidget(this);
    setCentralWidget(d->pages);
    createMessagePage();
    connect(&d->watch, &DirectoryWatch::existsChanged, this,
            [this](bool exists) { exists ? showAgain() : showLost(); });
    addShortcuts();
    load();
    restorePlace();
}

PlaybackWindow::~PlaybackWindow()
{
    delete d->playback; // it uses the loaded recording, which is the first to go otherwise
}

QString PlaybackWindow::recordingDir() const
{
    return d->dir;
}

void PlaybackWindow::setFromRecording(bool on)
{
    d->isFromRecording = on;
    if (d->exporter)
        d->exporter->setFromRecording(on);
}

void PlaybackWindow::load()
{
    delete d->playback;
    d->playback = nullptr;
    d->player = nullptr;
    d->recorder.loadRecording(d->dir);
    KelPlaybackTrackManager *const manager = d->recorder.playbackManager();
    if (manager && manager->isValidRecording()) {
        createPlaybackPage();
        d->pages->setCurrentWidget(d->playback);
        d->canvas->setFocus();
        showHints();
        return;
    }
    d->message->setMessage(tr("This recording cannot be shown"),
                           manager ? manager->errorString() : d->recorder.lastError());
    d->pages->setCurrentWidget(d->message);
    d->message->setFocus();
}

void PlaybackWindow::createMessagePage()
{
    d->message = new MessagePage(KelDockIcon::Glyph::Warning, this);
    d->message->setObjectName(QStringLiteral("MessagePage"));
    d->message->addAction(tr("&Open Folder"), tr("Shows the files of the recording in the file manager"),
                          [this] { showInFileManager(d->watch.exists() ? d->dir : QFileInfo(d->dir).path()); });
    d->message->addAction(tr("&Try Again"), tr("Loads the recording once more"), [this] { load(); });
    d->message->addAction(tr("&Close"), tr("Closes this window"), [this] { close(); });
    d->pages->addWidget(d->message);
}

void PlaybackWindow::createPlaybackPage()
{
    d->playback = new QWidget(this);
    d->playback->setObjectName(QStringLiteral("PlaybackPage"));
    KelPlaybackTrackManager *const manager = d->recorder.playbackManager();
    d->player = new Player(manager, d->playback);
    d->canvas = new PlaybackCanvas(manager, d->playback);
    d->strip = new PlaybackStrip(d->player, d->playback);
    d->notice = new NoticeBar(d->playback);
    d->settings = new SettingsSidebar(manager, d->playback);
    d->exporter = new RecordingExport(d->player, d->playback);
    d->exporter->setFromRecording(d->isFromRecording);

    connect(d->player, &Player::pictureChanged, d->canvas, &PlaybackCanvas::refresh);
    connect(d->canvas, &PlaybackCanvas::clicked, d->player, &Player::togglePlaying);
    connect(d->canvas, &PlaybackCanvas::doubleClicked, this, [this] {
        d->player->togglePlaying(); // the first click of the two has
        toggleFullScreen();
    });
    connect(d->strip, &PlaybackStrip::savePictureRequested, this, &PlaybackWindow::savePicture);
    connect(d->strip, &PlaybackStrip::copyPictureRequested, this, &PlaybackWindow::copyPicture);
    connect(d->strip, &PlaybackStrip::fullScreenRequested, this, &PlaybackWindow::toggleFullScreen);
    connect(d->strip, &PlaybackStrip::settingsToggled, this, &PlaybackWindow::setSettingsShown);
    connect(d->strip, &PlaybackStrip::recordAgainRequested, this, &PlaybackWindow::recordAgainRequested);
    connect(d->strip, &PlaybackStrip::exportRequested, this, &PlaybackWindow::exportRecording);
    connect(manager, &KelPlaybackTrackManager::sigSoundDeviceFailed, this, [this] {
        d->notice->tell(tr("There is no device that plays the sound. The picture is played without it."));
    });
    connect(d->exporter, &RecordingExport::exitRequested, this, &QWidget::close);
    connect(d->exporter, &RecordingExport::exported, this, [this](const QString &path) {
        const QFileInfo file(path);
        d->notice->tell(
            tr("%1 was exported (%2).")
                .arg(file.fileName(), locale().formattedDataSize(file.size(), 1, QLocale::DataSizeSIFormat)),
            tr("Open &Folder"), [folder = file.path()] { showInFileManager(folder); });
    });

    auto *const upper = new QHBoxLayout;
    upper->setSpacing(0);
    upper->addWidget(d->canvas, 1);
    upper->addWidget(d->settings);
    auto *const layout = new QVBoxLayout(d->playback);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(upper, 1);
    layout->addWidget(d->notice);
    layout->addWidget(d->strip);
    d->fullScreenControls = new FullScreenControls(d->playback, layout, d->canvas, d->strip);
    d->pages->addWidget(d->playback);
    setSettingsShown(windowStore().value(kSettingsShownKey, true).toBool());
}

/// Those with a modifier. The others wait until no control wants the key: in keyPressEvent().
void PlaybackWindow::addShortcuts()
{
    const auto add = [this](const QKeySequence &keys, void (PlaybackWindow::*action)()) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, [this, action] {
            if (d->player)
                (this->*action)();
        });
    };
    add(Qt::CTRL + Qt::Key_E, &PlaybackWindow::exportRecording);
    add(QKeySequence::Save, &PlaybackWindow::savePicture);
    add(QKeySequence::Copy, &PlaybackWindow::copyPicture);
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
}

void PlaybackWindow::showLost()
{
    if (d->player)
        d->player->setPlaying(false);
    if (isFullScreen())
        toggleFullScreen();
    d->message->setMessage(tr("This recording is no longer there"),
                           tr("Its folder %1 was moved, renamed or deleted.").arg(d->dir));
    d->pages->setCurrentWidget(d->message);
    d->message->setFocus();
}

/// What is loaded stays so: an export may be using it right now.
void PlaybackWindow::showAgain()
{
    if (d->player)
        d->pages->setCurrentWidget(d->playback);
    else
        load();
}

void PlaybackWindow::showHints()
{
    KelRecordingMetadata metadata;
    if (!KelRecordingMetadata::load(d->dir, &metadata)) {
        d->notice->tell(tr("The data about this recording is missing or damaged. It is shown at %n frame(s) a second.",
                           nullptr, d->recorder.playbackManager()->fps()));
    } else if (!metadata.complete) {
        d->notice->tell(tr("This recording was cut short by a crash. What was recorded until then is here."));
    }
}

void PlaybackWindow::exportRecording()
{
    if (d->pages->currentWidget() == d->playback)
        d->exporter->run();
}

void PlaybackWindow::savePicture()
{
    d->player->setPlaying(false);
    d->player->settle();
    const QImage picture = d->canvas->picture();
    const QString name = tr("%1 picture %2").arg(windowTitle(), QString::number(d->player->frame()));
    const QString path =
        SaveFileDialog::ask(this, {tr("Save Picture"), tr("PNG picture"), {QStringLiteral("png")}}, name);
    if (path.isEmpty())
        return;
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && picture.save(&file, "PNG") && file.commit()) {
        d->notice->tell(tr("%1 was saved.").arg(QFileInfo(path).fileName()), tr("Open &Folder"),
                        [folder = QFileInfo(path).path()] { showInFileManager(folder); });
    } else {
        KelMsgBox::critical(this, tr("Save Picture"), tr("The picture cannot be saved."), file.errorString());
    }
}

void PlaybackWindow::copyPicture()
{
    d->player->settle();
    QGuiApplication::clipboard()->setImage(d->canvas->picture());
    KelToastsMessage::showMessage(this, KelToastsMessage::Success, tr("The picture was copied."));
}

void PlaybackWindow::setSettingsShown(bool shown)
{
    d->settings->setVisible(shown);
    d->strip->setSettingsShown(shown);
    windowStore().setValue(kSettingsShownKey, shown);
}

void PlaybackWindow::toggleFullScreen()
{
    setWindowState(windowState() ^ Qt::WindowFullScreen);
}

void PlaybackWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange && d->player) {
        d->canvas->setEnlarging(isFullScreen());
        d->fullScreenControls->setActive(isFullScreen());
        d->settings->setVisible(!isFullScreen() && windowStore().value(kSettingsShownKey, true).toBool());
    }
    QMainWindow::changeEvent(event);
}

void PlaybackWindow::restorePlace()
{
    if (restoreGeometry(windowStore().value(kGeometryKey).toByteArray()))
        return;
    const QSize room = (QSizeF(screen()->availableSize()) * kShareOfScreen).toSize();
    resize(sizeHint().expandedTo(kSmallestSize).boundedTo(room));
}

void PlaybackWindow::closeEvent(QCloseEvent *event)
{
    if (d->player)
        d->player->setPlaying(false);
    if (!isFullScreen())
        windowStore().setValue(kGeometryKey, saveGeometry());
    QMainWindow::closeEvent(event);
}

void PlaybackWindow::keyPressEvent(QKeyEvent *event)
{
    if (!d->player || d->pages->currentWidget() != d->playback ||
        event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        QMainWindow::keyPressEvent(event);
        return;
    }
    const bool isShifted = event->modifiers() & Qt::ShiftModifier;
    const int direction = event->key() == Qt::Key_Left ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Space:
        d->player->togglePlaying();
        break;
    case Qt::Key_Left:
    case Qt::Key_Right:
        isShifted ? d->player->stepMs(direction * kStepMs) : d->player->stepFrames(direction);
        break;
    case Qt::Key_Home:
        d->player->goToStart();
        break;
    case Qt::Key_End:
        d->player->goToEnd();
        break;
    case Qt::Key_I:
        d->player->trimStartHere();
        break;
    case Qt::Key_O:
        d->player->trimEndHere();
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        d->player->faster();
        break;
    case Qt::Key_Minus:
        d->player->slower();
        break;
    case Qt::Key_F:
        toggleFullScreen();
        break;
    case Qt::Key_Escape:
        isFullScreen() ? toggleFullScreen() : d->notice->hide();
        break;
    default:
        QMainWindow::keyPressEvent(event);
    }
}
