#include "widget/FloatPanel.h"

#include "widget/ScaleFactor.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <algorithm>

namespace
{

constexpr int kGap = 4;
constexpr int kPadding = 3;
constexpr double kRadius = 7;

} // namespace

FloatPanel::FloatPanel(QWidget *parent)
    : QWidget(parent, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
{
    FloatPanel::updateQSS();
}

void FloatPanel::setDisplayEnable(bool enable)
{
    m_isDisplayEnabled = enable;
    if (!enable)
        hideManual();
}

void FloatPanel::updateQSS()
{
    const int padding = qRound(kPadding * scaleFactor(this));
    setContentsMargins(padding, padding, padding, padding);
}

void FloatPanel::popupBeside(QWidget *anchor)
{
    if (!m_isDisplayEnabled)
        return;
    m_anchor = anchor;
    updateQSS();
    resize(sizeHint());

    const QRect available = anchor->screen()->availableGeometry();
    const QRect beside(anchor->mapToGlobal(QPoint()), anchor->size());
    const int gap = qRound(kGap * scaleFactor(this));
    QRect place = rect();
    place.moveCenter(beside.center());
    place.moveTop(beside.bottom() + 1 + gap);
    if (place.bottom() > available.bottom())
        place.moveBottom(beside.top() - 1 - gap);
    place.moveRight(std::min(place.right(), available.right()));
    place.moveLeft(std::max(place.left(), available.left()));
    place.moveTop(std::max(place.top(), available.top()));
    move(place.topLeft());
    anchor->setFocus(Qt::PopupFocusReason); // receives keys again when the panel closes
    show();
    focusNextChild();
}

void FloatPanel::hideManual()
{
    hide();
}

void FloatPanel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor border = palette().color(QPalette::Mid);
    painter.fillRect(rect(), border); // visible where the mask is coarser than the curve
    painter.setPen(border);
    painter.setBrush(palette().color(QPalette::Base));
    const double radius = kRadius * scaleFactor(this);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

// A mask instead of translucency, which shows as black without a compositor.
void FloatPanel::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    QPainterPath shape;
    const double radius = (kRadius - 1) * scaleFactor(this);
    shape.addRoundedRect(QRectF(rect()), radius, radius);
    setMask(QRegion(shape.toFillPolygon().toPolygon()));
}

void FloatPanel::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        hideManual();
    else
        QWidget::keyPressEvent(event);
}

void FloatPanel::mousePressEvent(QMouseEvent *event)
{
    // The click that closes the panel must not reach its control, which would open it again.
    if (m_anchor && m_anchor->rect().contains(m_anchor->mapFromGlobal(event->globalPos())))
        setAttribute(Qt::WA_NoMouseReplay);
    QWidget::mousePressEvent(event);
}

void FloatPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    emit sigVisibleChanged(true);
}

void FloatPanel::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    emit sigVisibleChanged(false);
}
