#include "FrameMark.h"

namespace
{

constexpr int kCellSize = 5;
constexpr int kCells = 24;

const QColor kDark(36, 42, 84);
const QColor kLight(140, 150, 205);
constexpr int kThreshold = 96; // the gray halfway between the two

quint32 word(int frame)
{
    const quint32 number = static_cast<quint32>(frame) & 0xffff;
    const quint32 checksum = ((number >> 8) * 31 + (number & 0xff) * 17 + 0x5a) & 0xff;
    return number << 8 | checksum;
}

} // namespace

QRect FrameMark::rect(const QSize &sceneSize)
{
    return QRect(0, sceneSize.height() - kCellSize, kCells * kCellSize, kCellSize);
}

void FrameMark::paint(QPainter &painter, const QPoint &topLeft, int frame)
{
    const quint32 bits = word(frame);
    for (int i = 0; i < kCells; ++i) {
        const bool isSet = bits >> (kCells - 1 - i) & 1;
        painter.fillRect(topLeft.x() + i * kCellSize, topLeft.y(), kCellSize, kCellSize, isSet ? kLight : kDark);
    }
}

int FrameMark::read(const QImage &image)
{
    const QRect place = rect(image.size());
    if (!image.rect().contains(place))
        return -1;
    quint32 bits = 0;
    for (int i = 0; i < kCells; ++i) {
        const int x = place.x() + i * kCellSize + kCellSize / 2;
        bits = bits << 1 | (qGray(image.pixel(x, place.y() + kCellSize / 2)) > kThreshold ? 1 : 0);
    }
    const int frame = static_cast<int>(bits >> 8);
    return word(frame) == bits ? frame : -1;
}
