#pragma once

#include <KelMovie/KelPlayCtrlWidget.h>

class Player;
class QPushButton;

/// The strip under the picture, joined to a player: timeline with trim range, play, time, speed, and buttons for what
/// else can be done. The window carries it out.
class PlaybackStrip : public KelPlayCtrlWidget
{
    Q_OBJECT

public:
    /// `player` is not owned and must outlive the strip.
    explicit PlaybackStrip(Player *player, QWidget *parent = nullptr);

    void setSettingsShown(bool shown);

signals:
    void savePictureRequested();
    void copyPictureRequested();
    void fullScreenRequested();
    void settingsToggled(bool shown);
    void recordAgainRequested();
    void exportRequested();

private:
    void joinTimeline();
    void addSpeed();
    void addTrimMenu();
    void addPictureMenu();
    void addButtons();

    Player *const m_player;
    QPushButton *m_settings = nullptr;
};
