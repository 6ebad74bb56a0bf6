#pragma once

#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QRect>

/// A frame number drawn into the frame itself, so that decoded frames can be identified.
/// 24 cells of 5x5 pixels: a 16-bit number and an 8-bit checksum. Survives any usable compression.
namespace FrameMark
{

constexpr int kLargestFrame = 0xffff;

/// The area of the mark in a scene of that size: in its lower left corner.
QRect rect(const QSize &sceneSize);

void paint(QPainter &painter, const QPoint &topLeft, int frame);

/// The frame number in the lower left corner of the image; -1 when it is missing or damaged.
int read(const QImage &image);

} // namespace FrameMark
