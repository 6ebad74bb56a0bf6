#include "playback/keys/KeyBoxPainter.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kel
{

namespace
{

constexpr double kMinRatio = 0.1;
constexpr double kMaxRatio = 8.0;

/// Device pixels per pixel of the painter.
double pixelRatio(const QPainter &painter)
{
    return std::clamp(std::sqrt(std::abs(painter.combinedTransform().determinant())), kMinRatio, kMaxRatio);
}

/// The point, aligned to the device pixels.
QPointF snapped(const QPainter &painter, const QPointF &point)
{
    const QTransform toDevice = painter.combinedTransform();
    const QPointF device = toDevice.map(point);
    return toDevice.inverted().map(QPointF(std::round(device.x()), std::round(device.y())));
}

/// On its chip, translucent text could not be read.
QColor opaque(QColor color)
{
    color.setAlpha(255);
    return color;
}

void paintParts(QPainter &painter, const KeyBoxLayout &layout, const KeyOverlayStyle &style)
{
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    // Source mode replaces the pixels below, so that translucent colors do not add up.
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setPen(Qt::NoPen);
    painter.setBrush(style.bgColor);
    painter.drawRoundedRect(layout.background, layout.radius(), layout.radius());
    painter.setFont(layout.font);
    const int alignment = Qt::AlignCenter | Qt::TextDontClip | Qt::TextSingleLine;
    if (!layout.chipText.isEmpty()) {
        painter.setBrush(style.fontColor);
        painter.drawRoundedRect(layout.chip, layout.radius(), layout.radius());
        painter.setPen(opaque(style.bgColor));
        painter.drawText(layout.chip, alignment, layout.chipText);
    }
    painter.setPen(style.fontColor);
    painter.drawText(layout.textRect, alignment, layout.text);
    painter.setFont(layout.labelFont);
    painter.drawText(layout.label, alignment, layout.labelText);
}

} // namespace

void paintKeyBox(QPainter &painter, const KeyBoxLayout &layout, const KeyOverlayStyle &style)
{
    if (layout.isEmpty())
        return;
    const double ratio = pixelRatio(painter);
    QImage box((layout.background.size() * ratio).toSize() + QSize(1, 1), QImage::Format_ARGB32_Premultiplied);
    if (box.isNull())
        return;
    box.setDevicePixelRatio(ratio);
    box.fill(Qt::transparent);
    QPainter inner(&box);
    inner.translate(-layout.background.topLeft());
    paintParts(inner, layout, style);
    inner.end();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawImage(snapped(painter, layout.background.topLeft()), box);
}

} // namespace kel
