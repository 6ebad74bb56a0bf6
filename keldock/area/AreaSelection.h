#pragma once

#include <QFlags>
#include <QPoint>
#include <QRect>

/// The rectangle that a person draws, moves and stretches, without any window. Logical pixels of the desktop.
class AreaSelection
{
public:
    enum Edge { NoEdge = 0, Left = 1, Top = 2, Right = 4, Bottom = 8, Inside = 15 };
    Q_DECLARE_FLAGS(Edges, Edge)

    static constexpr int MinimumSide = 16; ///< what is drawn smaller was not meant as an area
    static constexpr int GripReach = 7;    ///< how far from an edge it still can be gripped

    explicit AreaSelection(const QRect &bounds = {});

    QRect bounds() const { return m_bounds; }
    /// Where the rectangle may be; it is brought there.
    void setBounds(const QRect &bounds);

    bool isEmpty() const { return m_rect.isEmpty(); }
    QRect rect() const { return m_rect; }
    /// Cut to the bounds; empty when nothing or too little is left.
    void setRect(const QRect &rect);

    /// The edges that a press at this point takes hold of; NoEdge outside, where it begins a new rectangle.
    Edges gripAt(const QPoint &point) const;
    /// The middle of the handle of one or two edges.
    QPoint handle(Edges edges) const;

    void press(const QPoint &point);
    void drag(const QPoint &point);
    /// Ends the press. False for a click that moved nothing: the rectangle is as it was.
    bool release();
    bool isDragging() const { return m_isPressed && m_hasMoved; }

    void moveBy(const QPoint &delta);
    /// Moves the right and the bottom edge.
    void growBy(const QPoint &delta);

private:
    QRect drawn(const QPoint &to) const;
    QRect stretched(const QPoint &delta) const;

    QRect m_bounds;
    QRect m_rect;
    QRect m_pressedRect; // as it was when the button went down
    QPoint m_pressedAt;
    Edges m_edges;
    bool m_isPressed = false;
    bool m_hasMoved = false;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(AreaSelection::Edges)
