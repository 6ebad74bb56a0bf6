#include "widget/ToggleSwitch.h"

#include "widget/ScaleFactor.h"

#include <QPainter>

namespace
{

constexpr int kWidth = 34;
constexpr int kHeight = 18;
constexpr double kFocusWidth = 1.5;
constexpr double kKnobInset = 3.5;

} // namespace

ToggleSwitch::ToggleSwitch(QWidget *parent)
    : QCheckBox(parent)
{
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize ToggleSwitch::sizeHint() const
{
    const double scale = scaleFactor(this);
    return {qRound(kWidth * scale), qRound(kHeight * scale)};
}

bool ToggleSwitch::hitButton(const QPoint &point) const
{
    return rect().contains(point);
}

void ToggleSwitch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = scaleFactor(this);
    const double line = hasFocus() ? kFocusWidth * scale : 0;
    const QRectF track = QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2);
    const double radius = track.height() / 2;
    const QColor ink = palette().color(QPalette::WindowText);
    if (!isEnabled())
        painter.setOpacity(0.5);
    // Contrasts with the background in both themes.
    QColor off = ink;
    off.setAlpha(underMouse() ? 120 : 95);
    painter.setPen(hasFocus() ? QPen(ink, line) : QPen(Qt::NoPen));
    painter.setBrush(isChecked() ? palette().color(QPalette::Highlight) : off);
    painter.drawRoundedRect(track, radius, radius);

    const double knob = radius - kKnobInset * scale;
    const bool isRight = isChecked() != (layoutDirection() == Qt::RightToLeft);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(isRight ? track.right() - radius : track.left() + radius, track.center().y()), knob,
                        knob);
}
