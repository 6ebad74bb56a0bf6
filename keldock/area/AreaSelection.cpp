#include "area/AreaSelection.h"

#include <algorithm>
#include <cstdlib>

namespace
{

constexpr int DragThreshold = 3; // a hand trembles

QRect moved(const QRect &rect, const QPoint &delta, const QRect &bounds)
{
    const int x = std::clamp(rect.x() + delta.x(), bounds.left(), bounds.right() + 1 - rect.width());
    const int y = std::clamp(rect.y() + delta.y(), bounds.top(), bounds.bottom() + 1 - rect.height());
    return QRect(QPoint(x, y), rect.size());
}

/// The place of an edge that is dragged: within the bounds and never too near to the opposite one, across which it may
/// be dragged.
int draggedEdge(int wanted, int opposite, int low, int high)
{
    wanted = std::clamp(wanted, low, high);
    if (std::abs(wanted - opposite) >= AreaSelection::MinimumSide)
        return wanted;
    const int before = opposite - AreaSelection::MinimumSide;
    const int after = opposite + AreaSelection::MinimumSide;
    const bool isBefore = wanted < opposite ? before >= low : after > high;
    return isBefore ? before : after;
}

} // namespace

AreaSelection::AreaSelection(const QRect &bounds)
    : m_bounds(bounds)
{
}

void AreaSelection::setBounds(const QRect &bounds)
{
    m_bounds = bounds;
    setRect(m_rect);
}

void AreaSelection::setRect(const QRect &rect)
{
    m_rect = rect & m_bounds;
    if (m_rect.width() < MinimumSide || m_rect.height() < MinimumSide)
        m_rect = QRect();
}

AreaSelection::Edges AreaSelection::gripAt(const QPoint &point) const
{
    const QRect reach = m_rect.adjusted(-GripReach, -GripReach, GripReach, GripReach);
    if (isEmpty() || !reach.contains(point))
        return NoEdge;
    // A small rectangle must leave room in its middle by which to move it.
    const int inX = std::min(GripReach, m_rect.width() / 4);
    const int inY = std::min(GripReach, m_rect.height() / 4);
    Edges edges;
    edges.setFlag(Left, point.x() < m_rect.left() + inX);
    edges.setFlag(Right, point.x() > m_rect.right() - inX);
    edges.setFlag(Top, point.y() < m_rect.top() + inY);
    edges.setFlag(Bottom, point.y() > m_rect.bottom() - inY);
    return edges ? edges : Edges(Inside);
}

QPoint AreaSelection::handle(Edges edges) const
{
    const QPoint centre = m_rect.center();
    return {edges & Left    ? m_rect.left()
            : edges & Right ? m_rect.right()
                            : centre.x(),
            edges & Top      ? m_rect.top()
            : edges & Bottom ? m_rect.bottom()
                             : centre.y()};
}

void AreaSelection::press(const QPoint &point)
{
    m_edges = gripAt(point);
    m_pressedAt = point;
    m_pressedRect = m_rect;
    m_isPressed = true;
    m_hasMoved = false;
}

void AreaSelection::drag(const QPoint &point)
{
    const QPoint delta = point - m_pressedAt;
    if (!m_isPressed || (!m_hasMoved && delta.manhattanLength() < DragThreshold))
        return;
    m_hasMoved = true;
    if (m_edges == NoEdge)
        m_rect = drawn(point);
    else if (m_edges == Inside)
        m_rect = moved(m_pressedRect, delta, m_bounds);
    else
        m_rect = stretched(delta);
}

bool AreaSelection::release()
{
    const bool isMeant = m_hasMoved && m_rect.width() >= MinimumSide && m_rect.height() >= MinimumSide;
    if (m_isPressed && !isMeant)
        m_rect = m_pressedRect;
    m_isPressed = m_hasMoved = false;
    return isMeant;
}

void AreaSelection::moveBy(const QPoint &delta)
{
    if (!isEmpty())
        m_rect = moved(m_rect, delta, m_bounds);
}

void AreaSelection::growBy(const QPoint &delta)
{
    if (isEmpty())
        return;
    m_rect.setWidth(std::clamp(m_rect.width() + delta.x(), MinimumSide, m_bounds.right() + 1 - m_rect.left()));
    m_rect.setHeight(std::clamp(m_rect.height() + delta.y(), MinimumSide, m_bounds.bottom() + 1 - m_rect.top()));
}

QRect AreaSelection::drawn(const QPoint &to) const
{
    const QPoint topLeft(std::min(m_pressedAt.x(), to.x()), std::min(m_pressedAt.y(), to.y()));
    const QPoint bottomRight(std::max(m_pressedAt.x(), to.x()), std::max(m_pressedAt.y(), to.y()));
    return QRect(topLeft, bottomRight) & m_bounds;
}

QRect AreaSelection::stretched(const QPoint &delta) const
{
    const int lowX = m_bounds.left(), highX = m_bounds.right() + 1;
    const int lowY = m_bounds.top(), highY = m_bounds.bottom() + 1;
    int left = m_pressedRect.left(), right = left + m_pressedRect.width();
    int top = m_pressedRect.top(), bottom = top + m_pressedRect.height();
    if (m_edges & Left)
        left = draggedEdge(left + delta.x(), right, lowX, highX);
    else if (m_edges & Right)
        right = draggedEdge(right + delta.x(), left, lowX, highX);
    if (m_edges & Top)
        top = draggedEdge(top + delta.y(), bottom, lowY, highY);
    else if (m_edges & Bottom)
        bottom = draggedEdge(bottom + delta.y(), top, lowY, highY);
    return {std::min(left, right), std::min(top, bottom), std::abs(right - left), std::abs(bottom - top)};
}
