#include "play/PlaybackStrip.h"

#include "play/player/Player.h"
#include "widgets/FlatButton.h"

#include <KelMovie/PlayProgressBar.h>
#include <KelMovie/PlaySpeedLabel.h>

#include <QMenu>
#include <QPushButton>

using KelDockIcon::Glyph;

PlaybackStrip::PlaybackStrip(Player *player, QWidget *parent)
    : KelPlayCtrlWidget(parent)
    , m_player(player)
{
    setAttribute(Qt::WA_StyledBackground); // in full screen it overlays the canvas
    connectTimeline();
    addSpeed();
    addTrimMenu();
    addFrameMenu();
    addButtons();
}

void PlaybackStrip::connectTimeline()
{
    PlayProgressBar *const bar = progressBar();
    setDuration(m_player->durationMs());
    setPlayTime(m_player->positionMs());
    connect(m_player, &Player::positionChanged, this, &PlaybackStrip::setPlayTime);
    connect(m_player, &Player::playingChanged, this, &PlaybackStrip::setPlayButtonState);
    connect(m_player, &Player::rangeChanged, this, [bar](int startMs, int endMs) {
        if (!bar->isDragging())
            bar->setPlayRange(startMs, endMs);
    });

    connect(this, &KelPlayCtrlWidget::sigPlayPause, m_player, &Player::setPlaying);
    connect(this, &KelPlayCtrlWidget::sigPlayTimeChanged, m_player, &Player::seekToMs);
    connect(this, &KelPlayCtrlWidget::sigPlayRangeChanged, m_player, [this](int startMs, int endMs, int type) {
        m_player->setRange(startMs, endMs);
        m_player->seekToMs(type == 0 ? startMs : endMs); // shows the frame at which the recording will be cut
    });
    connect(bar, &PlayProgressBar::sigPlayTimePress, m_player, &Player::beginScrub);
    connect(bar, &PlayProgressBar::sigPlayTimeRelease, m_player, &Player::endScrub);
    connect(bar, &PlayProgressBar::sigRangeAdjustStart, m_player, [this] { m_player->setPlaying(false); });
}

void PlaybackStrip::addSpeed()
{
    auto *const label = new PlaySpeedLabel(this);
    label->setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard to the player
    label->setSpeed(m_player->speed());
    connect(label, &PlaySpeedLabel::sigSpeedChanged, m_player, &Player::setSpeed);
    connect(m_player, &Player::speedChanged, label, &PlaySpeedLabel::setSpeed);
    addControl(label);
}

void PlaybackStrip::addTrimMenu()
{
    QPushButton *const button = createStripButton(Glyph::Trim, tr("Trim"), this);
    auto *const menu = new QMenu(button);
    menu->addAction(tr("&Start Here\tI"), m_player, &Player::trimStartHere);
    menu->addAction(tr("&End Here\tO"), m_player, &Player::trimEndHere);
    QAction *const reset = menu->addAction(tr("&Whole Recording"), m_player, &Player::resetRange);
    connect(menu, &QMenu::aboutToShow, reset, [=] { reset->setEnabled(m_player->isTrimmed()); });
    button->setMenu(menu);
    addControl(button);
}

void PlaybackStrip::addFrameMenu()
{
    QPushButton *const button = createStripButton(Glyph::Camera, tr("Save or copy this frame"), this);
    auto *const menu = new QMenu(button);
    menu->addAction(tr("&Save Frame...\tCtrl+S"), this, &PlaybackStrip::saveFrameRequested);
    menu->addAction(tr("&Copy Frame\tCtrl+C"), this, &PlaybackStrip::copyFrameRequested);
    button->setMenu(menu);
    addControl(button);
}

void PlaybackStrip::addButtons()
{
    QPushButton *const fullScreen = createStripButton(Glyph::FullScreen, tr("Full screen (F)"), this);
    connect(fullScreen, &QPushButton::clicked, this, &PlaybackStrip::fullScreenRequested);
    m_settings = createStripButton(Glyph::Settings, tr("Playback settings"), this);
    m_settings->setCheckable(true);
    connect(m_settings, &QPushButton::clicked, this, &PlaybackStrip::settingsToggled);
    QPushButton *const again = createStripButton(Glyph::Rerecord, tr("Record again"), this);
    connect(again, &QPushButton::clicked, this, &PlaybackStrip::recordAgainRequested);
    auto *const exporting = new QPushButton(tr("Export..."), this);
    exporting->setObjectName(QStringLiteral("PrimaryButton"));
    exporting->setToolTip(tr("Export as MP4, GIF, APNG or WebP (Ctrl+E)"));
    exporting->setFocusPolicy(Qt::TabFocus);
    connect(exporting, &QPushButton::clicked, this, &PlaybackStrip::exportRequested);
    for (QPushButton *const button : {fullScreen, m_settings, again, exporting})
        addControl(button);
}

void PlaybackStrip::setSettingsShown(bool shown)
{
    m_settings->setChecked(shown);
}
