#include "area/AreaPicker.h"

#include "area/AreaOverlay.h"

#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>

#include <algorithm>

namespace
{

constexpr int kShiftStep = 10;

/// A recording has a single scale, so an area cannot span screens of different scales.
bool haveSameScale()
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    return std::all_of(screens.begin(), screens.end(), [&](const QScreen *screen) {
        return qFuzzyCompare(screen->devicePixelRatio(), screens.first()->devicePixelRatio());
    });
}

QRect boundsAt(const QPoint &point)
{
    const QScreen *const screen = QGuiApplication::screenAt(point);
    return haveSameScale() || !screen ? AreaPicker::desktop() : screen->geometry();
}

} // namespace

QRect AreaPicker::desktop()
{
    QRect all;
    for (const QScreen *screen : QGuiApplication::screens())
        all |= screen->geometry();
    return all;
}

AreaPicker::AreaPicker(QObject *parent)
    : QObject(parent)
{
}

AreaPicker::~AreaPicker() = default;

void AreaPicker::open(const QRect &area, const QVector<QRect> &windows)
{
    close();
    m_windows = windows;
    m_selection = AreaSelection(boundsAt(area.isEmpty() ? QCursor::pos() : area.center()));
    m_selection.setRect(area);
    for (QScreen *screen : QGuiApplication::screens())
        m_overlays.push_back(std::make_unique<AreaOverlay>(this, screen));
    // After the last screenshot, which would otherwise contain an overlay.
    for (const auto &overlay : m_overlays)
        overlay->appear();
    const QScreen *const screen = QGuiApplication::screenAt(QCursor::pos());
    const auto isUnderPointer = [screen](const auto &overlay) { return overlay->screen() == screen; };
    const auto found = std::find_if(m_overlays.begin(), m_overlays.end(), isUnderPointer);
    (found != m_overlays.end() ? *found : m_overlays.front())->takeKeyboard();
    move(QCursor::pos(), false);
}

void AreaPicker::press(const QPoint &point)
{
    if (m_selection.gripAt(point) == AreaSelection::NoEdge)
        useBoundsAt(point);
    m_selection.press(point);
}

void AreaPicker::useBoundsAt(const QPoint &point)
{
    const QRect bounds = boundsAt(point);
    if (bounds != m_selection.bounds())
        m_selection = AreaSelection(bounds);
}

void AreaPicker::move(const QPoint &point, bool isPressed)
{
    if (isPressed)
        m_selection.drag(point);
    const bool mayPick = !m_selection.isDragging() && m_selection.gripAt(point) == AreaSelection::NoEdge;
    const auto window = std::find_if(m_windows.begin(), m_windows.end(),
                                     [&](const QRect &rect) { return mayPick && rect.contains(point); });
    m_hovered = window != m_windows.end() ? *window : QRect();
    update();
}

void AreaPicker::release(const QPoint &point)
{
    if (!m_selection.release() && !m_hovered.isEmpty())
        m_selection.setRect(m_hovered);
    move(point, false);
}

void AreaPicker::pressKey(QKeyEvent *event)
{
    const int step = event->modifiers() & Qt::ShiftModifier ? kShiftStep : 1;
    QPoint delta;
    switch (event->key()) {
    case Qt::Key_Escape:
        return cancel();
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return accept();
    case Qt::Key_A:
        if (event->modifiers() & Qt::ControlModifier)
            selectScreen();
        return;
    case Qt::Key_Left:
        delta = QPoint(-step, 0);
        break;
    case Qt::Key_Right:
        delta = QPoint(step, 0);
        break;
    case Qt::Key_Up:
        delta = QPoint(0, -step);
        break;
    case Qt::Key_Down:
        delta = QPoint(0, step);
        break;
    default:
        event->ignore();
        return;
    }
    if (event->modifiers() & Qt::ControlModifier)
        m_selection.growBy(delta);
    else
        m_selection.moveBy(delta);
    update();
}

void AreaPicker::accept()
{
    // Without a selection, the highlighted window is accepted.
    if (m_selection.isEmpty())
        m_selection.setRect(m_hovered);
    if (m_selection.isEmpty() || !isOpen())
        return;
    const QRect area = m_selection.rect();
    close();
    emit picked(area);
}

void AreaPicker::cancel()
{
    if (!isOpen())
        return;
    close();
    emit cancelled();
}

void AreaPicker::selectScreen()
{
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    m_selection.setBounds(boundsAt(screen->geometry().center()));
    m_selection.setRect(screen->geometry());
    update();
}

void AreaPicker::close()
{
    // deleteLater(), because the call may come from an overlay's event handler.
    for (auto &overlay : m_overlays) {
        overlay->releaseKeyboard();
        overlay->hide();
        overlay.release()->deleteLater();
    }
    m_overlays.clear();
    m_hovered = QRect();
}

void AreaPicker::update()
{
    for (const auto &overlay : m_overlays)
        overlay->showSelection();
}
