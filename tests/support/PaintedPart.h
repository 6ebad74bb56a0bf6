#pragma once

#include <QImage>
#include <QRect>

/// The smallest rectangle that holds all pixels of another colour than the ground.
inline QRect paintedPart(const QImage &image, QRgb ground = qRgba(0, 0, 0, 0))
{
    QRect part;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != ground)
                part |= QRect(x, y, 1, 1);
        }
    }
    return part;
}
