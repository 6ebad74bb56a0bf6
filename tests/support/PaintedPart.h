#pragma once

#include <QImage>
#include <QRect>

/// The bounding rectangle of all pixels that differ from the background.
inline QRect paintedPart(const QImage &image, QRgb background = qRgba(0, 0, 0, 0))
{
    QRect part;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != background)
                part |= QRect(x, y, 1, 1);
        }
    }
    return part;
}
