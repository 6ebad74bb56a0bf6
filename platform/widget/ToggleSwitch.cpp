#include "widget/ToggleSwitch.h"

#include <QPainter>

namespace
{

constexpr int kWidth = 34;
constexpr int kHeight = 18;
constexpr double kFocusRing = 3;
constexpr double kKnobInset = 3;

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
    const double scale = scaleFactor();
    return {qRound((kWidth + 2 * kFocusRing) * scale), qRound((kHeight + 2 * kFocusRing) * scale)};
}

bool ToggleSwitch::hitButton(const QPoint &point) const
{
    return rect().contains(point);
}

void ToggleSwitch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double scale = scaleFactor();
    const double ring = kFocusRing * scale;
    const QRectF track = QRectF(rect()).adjusted(ring, ring, -ring, -ring);
    const double radius = track.height() / 2;
    const QColor accent = palette().color(QPalette::Highlight);
    if (hasFocus()) {
        QColor glow = accent;
        glow.setAlpha(90);
        painter.setBrush(glow);
        painter.drawRoundedRect(rect(), radius + ring, radius + ring);
    }
    if (!isEnabled())
        painter.setOpacity(0.5);
    // Off, it must be told from what it lies on in either theme.
    QColor off = palette().color(QPalette::WindowText);
    off.setAlpha(underMouse() ? 120 : 95);
    painter.setBrush(isChecked() ? accent : off);
    painter.drawRoundedRect(track, radius, radius);

    const double knob = radius - kKnobInset * scale;
    const bool isRight = isChecked() != (layoutDirection() == Qt::RightToLeft);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(isRight ? track.right() - radius : track.left() + radius, track.center().y()), knob,
                        knob);
}
