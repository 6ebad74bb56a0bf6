#pragma once

#include "area/AreaSelection.h"

#include <QObject>
#include <QVector>

#include <memory>
#include <vector>

class AreaOverlay;
class QKeyEvent;
class QScreen;

/// Lets a person choose an area of the desktop, over still pictures of all screens. Drag for a new area, drag the area
/// or its handles to change it, click a window to take it; arrow keys nudge (Shift: by 10, Ctrl: the size), Ctrl+A
/// takes the screen. Enter or a double click accepts, Escape cancels. GUI thread.
class AreaPicker : public QObject
{
    Q_OBJECT

public:
    explicit AreaPicker(QObject *parent = nullptr);
    ~AreaPicker() override;

    /// Opens with an area to begin with, which may be empty. `windows` can be picked, the topmost first.
    void open(const QRect &area, const QVector<QRect> &windows);
    bool isOpen() const { return !m_overlays.empty(); }

    const AreaSelection &selection() const { return m_selection; }
    /// The window under the pointer that a click would take; empty when there is none.
    QRect hoveredWindow() const { return m_hovered; }

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
