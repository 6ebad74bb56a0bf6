#include "FrameMark.h"

namespace
{

constexpr int CellSize = 5;
constexpr int Cells = 24;

const QColor Dark(36, 42, 84);
const QColor Light(140, 150, 205);
constexpr int Threshold = 96; // grey half-way between the two

quint32 word(int frame)
{
    const quint32 number = static_cast<quint32>(frame) & 0xffff;
    const quint32 checksum = ((number >> 8) * 31 + (number & 0xff) * 17 + 0x5a) & 0xff;
    return number << 8 | checksum;
}

} // namespace

QRect FrameMark::rect(const QSize &sceneSize)
{
    return QRect(0, sceneSize.height() - CellSize, Cells * CellSize, CellSize);
}

void FrameMark::paint(QPainter &painter, const QPoint &topLeft, int frame)
{
    const quint32 bits = word(frame);
    for (int i = 0; i < Cells; ++i) {
        const bool isSet = bits >> (Cells - 1 - i) & 1;
        painter.fillRect(topLeft.x() + i * CellSize, topLeft.y(), CellSize, CellSize, isSet ? Light : Dark);
    }
}

int FrameMark::read(const QImage &picture)
{
    const QRect place = rect(picture.size());
    if (!picture.rect().contains(place))
        return -1;
    quint32 bits = 0;
    for (int i = 0; i < Cells; ++i) {
        const int x = place.x() + i * CellSize + CellSize / 2;
        bits = bits << 1 | (qGray(picture.pixel(x, place.y() + CellSize / 2)) > Threshold ? 1 : 0);
    }
    const int frame = static_cast<int>(bits >> 8);
    return word(frame) == bits ? frame : -1;
}
