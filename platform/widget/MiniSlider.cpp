#include "widget/MiniSlider.h"

#include "widget/ScaleFactor.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace
{

constexpr double kKnobRadius = 6;
constexpr double kFocusRing = 3;
constexpr double kGroove = 4;
constexpr int kWidth = 120;
constexpr int kMinimumWidth = 40;

} // namespace

MiniSlider::MiniSlider(QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

double MiniSlider::knobRadius() const
{
    return kKnobRadius * scaleFactor(this);
}

QSize MiniSlider::sizeHint() const
{
    return {qRound(kWidth * scaleFactor(this)), minimumSizeHint().height()};
}

QSize MiniSlider::minimumSizeHint() const
{
    return {qRound(kMinimumWidth * scaleFactor(this)), qRound(2 * (knobRadius() + kFocusRing))};
}

QRectF MiniSlider::grooveLine() const
{
    const double margin = knobRadius() + kFocusRing;
    return QRectF(margin, height() / 2.0, std::max(1.0, width() - 2 * margin), 0);
}

int MiniSlider::valueAt(double x) const
{
    const QRectF line = grooveLine();
    double fraction = (x - line.left()) / line.width(); // QSlider keeps its position within the range
    if ((layoutDirection() == Qt::RightToLeft) != invertedAppearance())
        fraction = 1 - fraction;
    return minimum() + qRound(fraction * (maximum() - minimum()));
}

void MiniSlider::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF line = grooveLine();
    const double range = std::max(1, maximum() - minimum());
    double fraction = (sliderPosition() - minimum()) / range;
    const bool fromRight = (layoutDirection() == Qt::RightToLeft) != invertedAppearance();
    if (fromRight)
        fraction = 1 - fraction;
    const QPointF knob(line.left() + fraction * line.width(), line.center().y());

    const double half = kGroove * scaleFactor(this) / 2;
    const QRectF groove = line.adjusted(-half, -half, half, half);
    QRectF filled = groove;
    fromRight ? filled.setLeft(knob.x()) : filled.setRight(knob.x());
    painter.setBrush(palette().color(QPalette::Mid));
    painter.drawRoundedRect(groove, half, half);
    const QColor accent = palette().color(QPalette::Highlight);
    painter.setBrush(accent);
    painter.drawRoundedRect(filled, half, half);

    const double radius = knobRadius();
    if (hasFocus()) {
        QColor ring = accent;
        ring.setAlpha(90);
        painter.setBrush(ring);
        painter.drawEllipse(knob, radius + kFocusRing, radius + kFocusRing);
    }
    painter.setBrush(accent);
    painter.drawEllipse(knob, radius, radius);
    painter.setBrush(isSliderDown() || underMouse() ? palette().color(QPalette::HighlightedText)
                                                    : palette().color(QPalette::Base));
    const double core = radius - (isSliderDown() || underMouse() ? 3.5 : 2) * scaleFactor(this);
    painter.drawEllipse(knob, core, core);
}

void MiniSlider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    setSliderDown(true);
    setSliderPosition(valueAt(event->localPos().x()));
}

void MiniSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (isSliderDown())
        setSliderPosition(valueAt(event->localPos().x()));
}

void MiniSlider::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        setSliderDown(false);
}
