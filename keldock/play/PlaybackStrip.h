#pragma once

#include <KelMovie/KelPlayCtrlWidget.h>

class Player;
class QPushButton;

/// The strip below a recording: timeline with the trim range, play button, time and speed, which control the player,
/// and buttons whose actions the owner carries out. GUI thread.
class PlaybackStrip : public KelPlayCtrlWidget
{
    Q_OBJECT

public:
    /// `player` is not owned and must outlive the strip.
    explicit PlaybackStrip(Player *player, QWidget *parent = nullptr);

    void setSettingsShown(bool shown);

signals:
    void saveFrameRequested();
    void copyFrameRequested();
    void fullScreenRequested();
    void settingsToggled(bool shown);
    void recordAgainRequested();
    void exportRequested();

private:
    void connectTimeline();
    void addSpeed();
    void addTrimMenu();
    void addFrameMenu();
    void addButtons();

    Player *const m_player;
    QPushButton *m_settings = nullptr;
};
