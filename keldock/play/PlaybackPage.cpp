#include "play/PlaybackPage.h"

#include "common/PngFile.h"
#include "common/Units.h"
#include "notification/KelMsgBox.h"
#include "notification/KelToastsMessage.h"
#include "play/FullScreenControls.h"
#include "play/PlaybackCanvas.h"
#include "play/PlaybackStrip.h"
#include "play/SettingsSidebar.h"
#include "play/export/RecordingExport.h"
#include "play/export/SaveFileDialog.h"
#include "play/player/Player.h"
#include "widgets/FileManager.h"
#include "widgets/NoticeBar.h"
#include "widgets/WindowStore.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QBoxLayout>
#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>

namespace
{

const QString kSettingsShownKey = QStringLiteral("PlaybackWindow/settingsShown");
constexpr int kStepMs = 1000;

} // namespace

PlaybackPage::PlaybackPage(KelPlaybackTrackManager *manager, QWidget *parent)
    : QWidget(parent)
    , m_manager(manager)
    , m_player(new Player(manager, this))
    , m_canvas(new PlaybackCanvas(manager, this))
    , m_strip(new PlaybackStrip(m_player, this))
    , m_notice(new NoticeBar(this))
    , m_settings(new SettingsSidebar(manager, this))
    , m_export(new RecordingExport(m_player, this))
{
    setObjectName(QStringLiteral("PlaybackPage"));
    setFocusProxy(m_canvas);
    layOut();
    connectCanvas();
    connectStrip();
    connectExport();
    connect(manager, &KelPlaybackTrackManager::sigSoundDeviceFailed, this,
            [this] { showNotice(tr("No audio output device is available. The recording plays without sound.")); });
    if (const QStringList problems = manager->soundProblems(); !problems.isEmpty())
        showNotice(tr("Not all of the recorded sound can be played: %1").arg(problems.join(QLatin1String("; "))));
    setSettingsShown(windowStore().value(kSettingsShownKey, true).toBool());
}

void PlaybackPage::layOut()
{
    auto *const upper = new QHBoxLayout;
    upper->setSpacing(0);
    upper->addWidget(m_canvas, 1);
    upper->addWidget(m_settings);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(upper, 1);
    layout->addWidget(m_notice);
    layout->addWidget(m_strip);
    m_fullScreenControls = new FullScreenControls(this, layout, m_canvas, m_strip);
}

void PlaybackPage::connectCanvas()
{
    connect(m_player, &Player::frameChanged, m_canvas, &PlaybackCanvas::refresh);
    connect(m_canvas, &PlaybackCanvas::clicked, m_player, &Player::togglePlaying);
    connect(m_canvas, &PlaybackCanvas::doubleClicked, this, [this] {
        m_player->togglePlaying(); // undoes the first click of the two
        emit fullScreenToggled();
    });
}

void PlaybackPage::connectStrip()
{
    connect(m_strip, &PlaybackStrip::saveFrameRequested, this, &PlaybackPage::saveFrame);
    connect(m_strip, &PlaybackStrip::copyFrameRequested, this, &PlaybackPage::copyFrame);
    connect(m_strip, &PlaybackStrip::fullScreenRequested, this, &PlaybackPage::fullScreenToggled);
    connect(m_strip, &PlaybackStrip::settingsToggled, this, &PlaybackPage::setSettingsShown);
    connect(m_strip, &PlaybackStrip::recordAgainRequested, this, &PlaybackPage::recordAgainRequested);
    connect(m_strip, &PlaybackStrip::exportRequested, this, &PlaybackPage::exportRecording);
}

void PlaybackPage::connectExport()
{
    connect(m_export, &RecordingExport::exitRequested, this, &PlaybackPage::closeRequested);
    connect(m_export, &RecordingExport::exported, this, [this](const QString &path) {
        const QFileInfo file(path);
        m_notice->showNotice(tr("%1 was exported (%2).").arg(file.fileName(), Units::bytes(file.size(), locale())),
                             tr("Open &Folder"), [folder = file.path()] { openInFileManager(folder); });
    });
}

void PlaybackPage::setFromRecording(bool on)
{
    m_export->setFromRecording(on);
}

void PlaybackPage::setFullScreen(bool on)
{
    m_isFullScreen = on;
    m_canvas->setEnlarging(on);
    m_fullScreenControls->setActive(on);
    m_settings->setVisible(!on && windowStore().value(kSettingsShownKey, true).toBool());
}

void PlaybackPage::setSettingsShown(bool shown)
{
    m_settings->setVisible(shown);
    m_strip->setSettingsShown(shown);
    windowStore().setValue(kSettingsShownKey, shown);
}

void PlaybackPage::pause()
{
    m_player->setPlaying(false);
}

void PlaybackPage::showNotice(const QString &text)
{
    m_notice->showNotice(text);
}

QString PlaybackPage::recordingName() const
{
    return QFileInfo(m_manager->recordDir()).fileName();
}

void PlaybackPage::exportRecording()
{
    m_export->run();
}

void PlaybackPage::saveFrame()
{
    m_player->setPlaying(false);
    m_player->settle();
    const QImage frame = m_canvas->frame();
    const QString name = tr("%1 frame %2").arg(recordingName(), QString::number(m_player->frame()));
    const QString path = SaveFileDialog::ask(this, {tr("Save Frame"), tr("PNG image"), {QStringLiteral("png")}}, name);
    if (path.isEmpty())
        return;
    const QString problem = savePng(frame, path);
    if (problem.isEmpty()) {
        m_notice->showNotice(tr("%1 was saved.").arg(QFileInfo(path).fileName()), tr("Open &Folder"),
                             [folder = QFileInfo(path).path()] { openInFileManager(folder); });
    } else {
        KelMsgBox::critical(this, tr("Save Frame"), tr("The frame cannot be saved."), problem);
    }
}

void PlaybackPage::copyFrame()
{
    m_player->settle();
    QGuiApplication::clipboard()->setImage(m_canvas->frame());
    KelToastsMessage::showMessage(this, KelToastsMessage::Success, tr("The frame was copied."));
}

bool PlaybackPage::handleKey(const QKeyEvent &event)
{
    const bool isShifted = event.modifiers() & Qt::ShiftModifier;
    const int direction = event.key() == Qt::Key_Left ? -1 : 1;
    switch (event.key()) {
    case Qt::Key_Space:
        m_player->togglePlaying();
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
        isShifted ? m_player->stepMs(direction * kStepMs) : m_player->stepFrames(direction);
        return true;
    case Qt::Key_Home:
        m_player->goToStart();
        return true;
    case Qt::Key_End:
        m_player->goToEnd();
        return true;
    case Qt::Key_I:
        m_player->trimStartHere();
        return true;
    case Qt::Key_O:
        m_player->trimEndHere();
        return true;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        m_player->faster();
        return true;
    case Qt::Key_Minus:
        m_player->slower();
        return true;
    case Qt::Key_F:
        emit fullScreenToggled();
        return true;
    case Qt::Key_Escape:
        if (m_isFullScreen)
            emit fullScreenToggled();
        else
            m_notice->hide();
        return true;
    default:
        return false;
    }
}
