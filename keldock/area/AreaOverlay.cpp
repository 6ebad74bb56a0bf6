#include "area/AreaOverlay.h"

#include "area/AreaPicker.h"
#include "common/WindowPlacement.h"
#include "dockicon/KelDockIcon.h"
#include "style/KelStyleTheme.h"
#include "widget/ScaleFactor.h"
#include "widgets/DockStyle.h"
#include "widgets/FlatButton.h"

#include <KelMovie/KelMovieUI.h>

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QWindow>

namespace
{

const QColor kDim(0, 0, 0, 120);
const QColor kNoteBackground(20, 22, 26, 220);

/// Wayland shows the screen to the module only.
QPixmap screenshotOf(QScreen &screen)
{
    if (canPlaceWindows())
        return screen.grabWindow(0);
    QPixmap pixmap = QPixmap::fromImage(KelMovieUI::screenshot(screen.geometry()));
    pixmap.setDevicePixelRatio(screen.devicePixelRatio());
    return pixmap;
}

QPushButton *addButton(QWidget *bar, KelDockIcon::Glyph glyph, const QString &action)
{
    QPushButton *const button = createBarButton(glyph, action, bar);
    button->setFocusPolicy(Qt::NoFocus); // the overlay handles all keys
    bar->layout()->addWidget(button);
    return button;
}

Qt::CursorShape cursorFor(AreaSelection::Edges edges)
{
    switch (int(edges)) {
    case AreaSelection::Left | AreaSelection::Top:
    case AreaSelection::Right | AreaSelection::Bottom:
        return Qt::SizeFDiagCursor;
    case AreaSelection::Right | AreaSelection::Top:
    case AreaSelection::Left | AreaSelection::Bottom:
        return Qt::SizeBDiagCursor;
    case AreaSelection::Left:
    case AreaSelection::Right:
        return Qt::SizeHorCursor;
    case AreaSelection::Top:
    case AreaSelection::Bottom:
        return Qt::SizeVerCursor;
    case AreaSelection::Inside:
        return Qt::SizeAllCursor;
    default:
        return Qt::CrossCursor;
    }
}

} // namespace

// Bypasses the window manager, which might not let it cover panels or might move it to another screen.
AreaOverlay::AreaOverlay(AreaPicker *picker, QScreen *screen)
    : QWidget(nullptr, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::BypassWindowManagerHint)
    , m_picker(picker)
    , m_geometry(screen->geometry())
    , m_screenshot(screenshotOf(*screen))
    , m_buttons(createButtons())
{
    setWindowTitle(tr("Choose the area to record"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_QuitOnClose, false);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::CrossCursor);
    setGeometry(m_geometry);
    winId(); // creates the window, so that it can be given a screen
    windowHandle()->setScreen(screen);
}

QWidget *AreaOverlay::createButtons()
{
    auto *const bar = new QWidget(this);
    bar->setObjectName(QStringLiteral("AreaButtons"));
    bar->setCursor(Qt::ArrowCursor);
    auto *const layout = new QHBoxLayout(bar);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(2);
    applyDockStyle(bar, QStringLiteral("Bar"));
    using KelDockIcon::Glyph;
    connect(addButton(bar, Glyph::Screen, tr("Whole screen (Ctrl+A)")), &QPushButton::clicked, m_picker,
            &AreaPicker::selectScreen);
    connect(addButton(bar, Glyph::Close, tr("Cancel (Esc)")), &QPushButton::clicked, m_picker, &AreaPicker::cancel);
    connect(addButton(bar, Glyph::Check, tr("Use this area (Enter)")), &QPushButton::clicked, m_picker,
            &AreaPicker::accept);
    return bar;
}

void AreaOverlay::appear()
{
    if (canPlaceWindows())
        show();
    else
        showFullScreen(); // the only window whose place is certain
    raise();
    showSelection();
}

void AreaOverlay::takeKeyboard()
{
    activateWindow();
    setFocus();
    grabKeyboard();
}

void AreaOverlay::showSelection()
{
    placeButtons();
    update();
}

void AreaOverlay::placeButtons()
{
    const AreaSelection &selection = m_picker->selection();
    const bool isHere = m_geometry.contains(selection.rect().bottomRight());
    m_buttons->setVisible(isHere && !selection.isDragging());
    if (m_buttons->isHidden())
        return;
    m_buttons->adjustSize();
    const QRect area = local(selection.rect());
    const int gap = int(8 * scaleFactor(this));
    const int right = area.right() + 1 - m_buttons->width();
    int y = area.bottom() + gap;
    if (y + m_buttons->height() > height())
        y = area.top() - gap - m_buttons->height();
    if (y < 0) // no space above or below
        y = area.bottom() - gap - m_buttons->height();
    m_buttons->move(qBound(0, right, width() - m_buttons->width()), y);
}

void AreaOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(rect(), m_screenshot);
    const AreaSelection &selection = m_picker->selection();
    const QRect area = local(selection.rect());
    const QRect hovered = local(m_picker->hoveredWindow());
    QRegion dimmed(rect());
    dimmed -= area;
    dimmed -= hovered;
    painter.setClipRegion(dimmed);
    painter.fillRect(rect(), kDim);
    painter.setClipping(false);

    const QColor main = KelStyleTheme::instance()->color(QStringLiteral("ColorMain"));
    if (!hovered.isEmpty()) {
        QColor light = main;
        light.setAlpha(50);
        painter.fillRect(hovered, light);
        painter.setPen(QPen(main, 2));
        painter.drawRect(hovered.adjusted(1, 1, -1, -1));
    }
    if (!area.isEmpty()) {
        painter.setPen(QPen(main, 1));
        painter.drawRect(area.adjusted(-1, -1, 0, 0));
        paintHandles(painter);
        paintSize(painter);
    }
    if (!selection.isDragging())
        paintHint(painter);
}

void AreaOverlay::paintHandles(QPainter &painter) const
{
    const AreaSelection &selection = m_picker->selection();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(KelStyleTheme::instance()->color(QStringLiteral("ColorMain")), 1.5));
    painter.setBrush(Qt::white);
    for (int edges = AreaSelection::Left; edges < AreaSelection::Inside; ++edges) {
        const bool areOpposite = (edges & AreaSelection::Left && edges & AreaSelection::Right) ||
                                 (edges & AreaSelection::Top && edges & AreaSelection::Bottom);
        if (areOpposite)
            continue;
        const QPoint center = selection.handle(AreaSelection::Edges(edges)) - m_geometry.topLeft();
        painter.drawEllipse(QPointF(center) + QPointF(0.5, 0.5), 5, 5);
    }
}

void AreaOverlay::paintSize(QPainter &painter) const
{
    const QRect area = m_picker->selection().rect();
    if (!m_geometry.contains(area.topLeft()))
        return;
    // The size of the recorded video: physical pixels.
    const QSize pixels = area.size() * devicePixelRatioF();
    const QString text = QStringLiteral("%1 × %2").arg(pixels.width()).arg(pixels.height());
    const QSize size = fontMetrics().size(0, text) + QSize(int(16 * scaleFactor(this)), int(8 * scaleFactor(this)));
    QRect box(QPoint(local(area).left(), local(area).top() - size.height() - int(8 * scaleFactor(this))), size);
    if (box.top() < 0)
        box.moveTop(local(area).top() + int(8 * scaleFactor(this)));
    box.moveLeft(qBound(0, box.left(), width() - box.width()));
    paintNote(painter, text, box);
}

void AreaOverlay::paintHint(QPainter &painter) const
{
    const QString text = m_picker->selection().isEmpty()
                             ? tr("Drag to select an area, or click a window. Press Esc to cancel.")
                             : tr("Press Enter or double-click to use this area. Press Esc to cancel.");
    const QSize size = fontMetrics().size(0, text) + QSize(int(32 * scaleFactor(this)), int(16 * scaleFactor(this)));
    const QRect box(QPoint((width() - size.width()) / 2, int(48 * scaleFactor(this))), size);
    if (!box.intersects(local(m_picker->selection().rect()).adjusted(-60, -60, 60, 60)))
        paintNote(painter, text, box);
}

void AreaOverlay::paintNote(QPainter &painter, const QString &text, QRect box) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kNoteBackground);
    painter.drawRoundedRect(box, 6 * scaleFactor(this), 6 * scaleFactor(this));
    painter.setPen(Qt::white);
    painter.drawText(box, Qt::AlignCenter, text);
}

void AreaOverlay::updateCursor(const QPoint &globalPoint)
{
    setCursor(cursorFor(m_picker->selection().gripAt(globalPoint)));
}

void AreaOverlay::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        m_picker->press(event->globalPos());
    else if (event->button() == Qt::RightButton)
        m_picker->cancel();
}

void AreaOverlay::mouseMoveEvent(QMouseEvent *event)
{
    const bool isPressed = event->buttons() & Qt::LeftButton;
    if (!isPressed)
        updateCursor(event->globalPos());
    m_picker->move(event->globalPos(), isPressed);
}

void AreaOverlay::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_picker->release(event->globalPos());
    updateCursor(event->globalPos());
}

void AreaOverlay::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_picker->selection().rect().contains(event->globalPos()))
        m_picker->accept();
}

void AreaOverlay::keyPressEvent(QKeyEvent *event)
{
    m_picker->pressKey(event);
}
