#pragma once

#include <QColor>

/// The color of frame `index` of the scripted video: the index can be read back from any pixel.
inline QRgb frameColor(int index)
{
    return qRgb(index & 0xff, (index >> 8) & 0xff, 0x55);
}

inline int frameOfColor(QRgb pixel)
{
    return qBlue(pixel) == 0x55 ? qRed(pixel) | qGreen(pixel) << 8 : -1;
}
