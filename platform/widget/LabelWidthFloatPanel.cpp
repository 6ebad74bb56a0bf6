#include "widget/LabelWidthFloatPanel.h"

#include "widget/ControlPainting.h"
#include "widget/FloatPanel.h"
#include "widget/LabelAccessible.h"
#include "widget/ScaleFactor.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

using namespace kel;

namespace
{

constexpr int kPadding = 8;
constexpr int kPaddingAbove = 4;
constexpr int kArrowWidth = 7;
constexpr int kArrowGap = 6;
constexpr double kRadius = 5;
constexpr double kFocusWidth = 1.5;

} // namespace

LabelWidthFloatPanel::LabelWidthFloatPanel(QWidget *parent)
    : QLabel(parent)
{
    QAccessible::installFactory(labelAccessible); // installed only once, however often this is called
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
    updateMargins();
}

void LabelWidthFloatPanel::setPanel(FloatPanel *panel)
{
    delete m_panel;
    m_panel = panel;
    panel->setParent(this, panel->windowFlags());
    connect(panel, &FloatPanel::sigVisibleChanged, this, QOverload<>::of(&QWidget::update));
}

void LabelWidthFloatPanel::togglePanel()
{
    if (m_panel && m_panel->isVisible())
        m_panel->hideManual();
    else if (canOpen())
        m_panel->popupBeside(this);
}

bool LabelWidthFloatPanel::canOpen() const
{
    return m_panel && m_panel->isDisplayEnabled() && isEnabled();
}

bool LabelWidthFloatPanel::event(QEvent *event)
{
    if (event->type() == QEvent::ScreenChangeInternal || event->type() == QEvent::Show)
        updateMargins();
    return QLabel::event(event);
}

void LabelWidthFloatPanel::updateMargins()
{
    const double scale = scaleFactor(this);
    const int side = qRound(kPadding * scale);
    const int above = qRound(kPaddingAbove * scale);
    setContentsMargins(side, above, side + qRound((kArrowGap + kArrowWidth) * scale), above);
}

void LabelWidthFloatPanel::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = scaleFactor(this);
    const double radius = kRadius * scale;
    const bool isOpen = m_panel && m_panel->isVisible();
    if (canOpen() && (underMouse() || isOpen)) {
        QColor shade = palette().color(QPalette::WindowText);
        shade.setAlpha(isOpen ? 38 : 22);
        painter.setPen(Qt::NoPen);
        painter.setBrush(shade);
        painter.drawRoundedRect(rect(), radius, radius);
    }
    if (hasFocus()) {
        const double inset = kFocusWidth / 2;
        painter.setPen(QPen(palette().color(QPalette::Highlight), kFocusWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
    }
    if (canOpen()) {
        const double half = kArrowWidth * scale / 2;
        const QPointF tip(width() - kPadding * scale - half, height() / 2.0 + half / 2);
        ControlPainting::paintArrow(painter, *this, tip, kArrowWidth * scale, palette().color(foregroundRole()));
    }
    painter.end();
    QLabel::paintEvent(event);
}

void LabelWidthFloatPanel::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Enter:
    case Qt::Key_Return:
    case Qt::Key_Down:
        togglePanel();
        break;
    default:
        QLabel::keyPressEvent(event);
    }
}

void LabelWidthFloatPanel::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        togglePanel();
    else
        QLabel::mousePressEvent(event);
}
