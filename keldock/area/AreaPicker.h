#pragma once

#include "area/AreaSelection.h"

#include <QObject>
#include <QVector>

#include <memory>
#include <vector>

class AreaOverlay;
class QKeyEvent;
class QScreen;

/// The user chooses an area of the desktop over screenshots of all screens. Dragging selects a new area, moves it, or
/// resizes it by its handles; clicking a window selects the window. Arrow keys move the area by 1, with Shift by 10;
/// with Ctrl they resize it. Ctrl+A selects the screen. Enter or a double-click accepts, Escape cancels. GUI thread.
class AreaPicker : public QObject
{
    Q_OBJECT

public:
    /// The rectangle around all screens, in logical pixels.
    static QRect desktop();

    explicit AreaPicker(QObject *parent = nullptr);
    ~AreaPicker() override;

    /// `area` is the initial selection and may be empty. `windows` can be selected by a click, topmost first.
    void open(const QRect &area, const QVector<QRect> &windows);
    bool isOpen() const { return !m_overlays.empty(); }

    const AreaSelection &selection() const { return m_selection; }
    /// The window under the pointer that a click would select; empty if there is none.
    QRect hoveredWindow() const { return m_hovered; }

    // Input from the overlays; points are in logical pixels of the desktop.
    void press(const QPoint &point);
    void move(const QPoint &point, bool isPressed);
    void release(const QPoint &point);
    void pressKey(QKeyEvent *event);

public slots:
    void accept();
    void cancel();
    void selectScreen();

signals:
    void picked(const QRect &area);
    void cancelled();

private:
    void useBoundsAt(const QPoint &point);
    void close();
    void update();

    AreaSelection m_selection;
    QVector<QRect> m_windows;
    QRect m_hovered;
    std::vector<std::unique_ptr<AreaOverlay>> m_overlays;
};
