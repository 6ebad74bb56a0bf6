#pragma once

#include "dockicon/Glyph.h"
#include "recorder/RecordingController.h"

#include <QPoint>
#include <QVector>
#include <QWidget>

class KelRecordButton;
class KelRecordFpsLabel;
class KelRecordPauseButton;
class KelRecordTimeLable;
class QPushButton;
class TrackSwitches;

/// The recorder's toolbar: shows the state of the recording and what will be recorded, and emits the user's requests. A
/// frameless window on top of all others that the user moves by dragging. GUI thread.
class RecordToolbar : public QWidget
{
    Q_OBJECT

public:
    explicit RecordToolbar(QWidget *parent = nullptr);

    void showState(RecordingController::State state);
    /// Negative during a countdown.
    void showElapsed(qint64 ms);
    /// Shows the current settings.
    void refresh();

    /// Moves beside the area if it overlaps it or is hidden. False when there is no space outside of the area, and
    /// where windows cannot be placed.
    bool moveAwayFrom(const QRect &area);
    /// Moves to its initial position: beside the area, or near the bottom of the screen.
    void moveToStart(const QRect &area);

signals:
    /// The pointer has entered or left the toolbar.
    void hovered(bool isHovered);
    void recordRequested();
    void stopRequested();
    void pauseRequested();
    void areaRequested();
    void recordingsRequested();
    void settingsRequested();
    void minimizeRequested();
    void closeRequested();
    /// During a recording.
    void keysSwitched(bool on);
    void mouseSwitched(bool on);

protected:
    void closeEvent(QCloseEvent *event) override;
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void giveWayTo(QWindow *focused);
    void layOut();
    void connectRecordButtons();
    QPushButton *addButton(KelDockIcon::Glyph glyph, const QString &action, void (RecordToolbar::*request)());

    QWidget *const m_recordButtons; // styled by the module
    KelRecordButton *const m_record;
    KelRecordPauseButton *const m_pause;
    KelRecordTimeLable *const m_time;
    KelRecordFpsLabel *const m_fps;
    TrackSwitches *const m_switches;
    QPushButton *m_area = nullptr;
    QVector<QWidget *> m_extras; // hidden when the toolbar shows only the essentials
    RecordingController::State m_state = RecordingController::State::Idle;
    QPoint m_dragStart;
};
