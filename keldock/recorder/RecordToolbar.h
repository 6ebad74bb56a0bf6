#pragma once

#include "recorder/RecordingController.h"

#include <QWidget>

#include <memory>

/// The recorder's toolbar: it shows what the controller does and what will be recorded, and tells what the user wants.
/// Always on top, without a frame, moved by dragging it. GUI thread.
class RecordToolbar : public QWidget
{
    Q_OBJECT

public:
    explicit RecordToolbar(QWidget *parent = nullptr);
    ~RecordToolbar() override;

    void showState(RecordingController::State state);
    void showElapsed(qint64 ms);
    /// Shows the settings as they are now.
    void refresh();

    /// Moves beside the area, if it is in the way of it. False when there is no such place.
    bool makeWayFor(const QRect &area);
    /// Where it is to be seen at first: beside the area, or at the bottom of the screen.
    void appearBeside(const QRect &area);

signals:
    /// The pointer has come over the toolbar, or left it.
    void hovered(bool isHovered);
    void recordRequested();
    void stopRequested();
    void pauseRequested();
    void areaRequested();
    void recordingsRequested();
    void settingsRequested();
    void minimizeRequested();
    void closeRequested();
    /// While recording.
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
    class Private;
    std::unique_ptr<Private> d;
};
