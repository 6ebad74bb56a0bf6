#pragma once

#include <QFlags>
#include <QPoint>
#include <QRect>

/// The geometry of a rectangle that the user draws, moves and resizes. Logical pixels of the desktop.
class AreaSelection
{
public:
    enum Edge { NoEdge = 0, Left = 1, Top = 2, Right = 4, Bottom = 8, Inside = 15 };
    Q_DECLARE_FLAGS(Edges, Edge)

    static constexpr int kMinimumSide = 16; ///< a smaller drawing is ignored as accidental
    static constexpr int kGripReach = 7;    ///< distance from an edge within which it can be dragged

    explicit AreaSelection(const QRect &bounds = {});

    QRect bounds() const { return m_bounds; }
    /// Limits the rectangle, and clips it if necessary.
    void setBounds(const QRect &bounds);

    bool isEmpty() const { return m_rect.isEmpty(); }
    QRect rect() const { return m_rect; }
    /// Clips the rectangle to the bounds. It becomes empty if a side is shorter than kMinimumSide then.
    void setRect(const QRect &rect);

    /// The edges that a press at this point would drag; NoEdge outside, where it would draw a new rectangle.
    Edges gripAt(const QPoint &point) const;
    /// The center of the handle of one edge, or of the corner of two.
    QPoint handle(Edges edges) const;

    void press(const QPoint &point);
    void drag(const QPoint &point);
    /// Ends the press. False for a click or an accidental drag; the rectangle is then unchanged.
    bool release();
    bool isDragging() const { return m_isPressed && m_hasMoved; }

    void moveBy(const QPoint &delta);
    /// Moves the right and the bottom edges.
    void growBy(const QPoint &delta);

private:
    QRect drawn(const QPoint &to) const;
    QRect stretched(const QPoint &delta) const;

    QRect m_bounds;
    QRect m_rect;
    QRect m_pressedRect; // when the button was pressed
    QPoint m_pressedAt;
    Edges m_edges;
    bool m_isPressed = false;
    bool m_hasMoved = false;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(AreaSelection::Edges)
