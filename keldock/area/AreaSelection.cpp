#include "area/AreaSelection.h"

#include <algorithm>
#include <cstdlib>

namespace
{

constexpr int kDragThreshold = 3; // a smaller movement still is a click

QRect moved(const QRect &rect, const QPoint &delta, const QRect &bounds)
{
    const int x = std::clamp(rect.x() + delta.x(), bounds.left(), bounds.right() + 1 - rect.width());
    const int y = std::clamp(rect.y() + delta.y(), bounds.top(), bounds.bottom() + 1 - rect.height());
    return QRect(QPoint(x, y), rect.size());
}

/// The position of a dragged edge: within the bounds and at least kMinimumSide from the opposite edge, which it may
/// cross.
int draggedEdge(int target, int opposite, int low, int high)
{
    target = std::clamp(target, low, high);
    if (std::abs(target - opposite) >= AreaSelection::kMinimumSide)
        return target;
    const int before = opposite - AreaSelection::kMinimumSide;
    const int after = opposite + AreaSelection::kMinimumSide;
    const bool isBefore = target < opposite ? before >= low : after > high;
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
    if (m_rect.width() < kMinimumSide || m_rect.height() < kMinimumSide)
        m_rect = QRect();
}

AreaSelection::Edges AreaSelection::gripAt(const QPoint &point) const
{
    const QRect reach = m_rect.adjusted(-kGripReach, -kGripReach, kGripReach, kGripReach);
    if (isEmpty() || !reach.contains(point))
        return NoEdge;
    // Leaves the middle of a small rectangle free for moving it.
    const int inX = std::min(kGripReach, m_rect.width() / 4);
    const int inY = std::min(kGripReach, m_rect.height() / 4);
    Edges edges;
    edges.setFlag(Left, point.x() < m_rect.left() + inX);
    edges.setFlag(Right, point.x() > m_rect.right() - inX);
    edges.setFlag(Top, point.y() < m_rect.top() + inY);
    edges.setFlag(Bottom, point.y() > m_rect.bottom() - inY);
    return edges ? edges : Edges(Inside);
}

QPoint AreaSelection::handle(Edges edges) const
{
    const QPoint center = m_rect.center();
    return {edges & Left    ? m_rect.left()
            : edges & Right ? m_rect.right()
                            : center.x(),
            edges & Top      ? m_rect.top()
            : edges & Bottom ? m_rect.bottom()
                             : center.y()};
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
    if (!m_isPressed || (!m_hasMoved && delta.manhattanLength() < kDragThreshold))
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
    const bool isIntended = m_hasMoved && m_rect.width() >= kMinimumSide && m_rect.height() >= kMinimumSide;
    if (m_isPressed && !isIntended)
        m_rect = m_pressedRect;
    m_isPressed = m_hasMoved = false;
    return isIntended;
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
    m_rect.setWidth(std::clamp(m_rect.width() + delta.x(), kMinimumSide, m_bounds.right() + 1 - m_rect.left()));
    m_rect.setHeight(std::clamp(m_rect.height() + delta.y(), kMinimumSide, m_bounds.bottom() + 1 - m_rect.top()));
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
