#pragma once

#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QRect>

/// A frame number written into the picture itself, so that whoever decodes a recording knows which frame he looks at.
/// 24 cells of 5x5 pixels: 16 bits of number, 8 bits of checksum. Survives any usable compression.
namespace FrameMark
{

constexpr int LargestFrame = 0xffff;

/// The place of the mark in a scene of that size: its lower left corner.
QRect rect(const QSize &sceneSize);

void paint(QPainter &painter, const QPoint &topLeft, int frame);

/// The number in the lower left corner of the picture; -1 when there is none or it is damaged.
int read(const QImage &picture);

} // namespace FrameMark
