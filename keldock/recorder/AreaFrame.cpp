#include "recorder/AreaFrame.h"

#include <QPainter>

namespace
{

constexpr int Gap = 1; // to the area, so that no rounding of a scaled screen brings the frame into the picture
constexpr int Thickness = 3;

} // namespace

AreaFrame::AreaFrame(QWidget *parent)
    : QWidget(parent, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::BypassWindowManagerHint |
                          Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus | Qt::ToolTip)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(tr("Recorded area"));
}

void AreaFrame::frame(const QRect &area)
{
    if (area.isEmpty()) {
        hide();
        return;
    }
    const int margin = Gap + Thickness;
    setGeometry(area.adjusted(-margin, -margin, margin, margin));
    const QRect hole = rect().adjusted(Thickness, Thickness, -Thickness, -Thickness);
    // Not translucent: that takes a compositor. The middle is no part of the window at all.
    setMask(QRegion(rect()) - hole);
    show();
    raise();
}

void AreaFrame::setLook(Look look)
{
    m_look = look;
    update();
}

void AreaFrame::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor color = m_look == Look::Recording ? QColor(0xe1, 0x3d, 0x30)
                         : m_look == Look::Paused  ? QColor(0xe8, 0xa3, 0x3d)
                                                   : QColor(0x33, 0x88, 0xff);
    painter.fillRect(rect(), color);
    if (m_look == Look::Recording)
        return;
    painter.setPen(QPen(Qt::white, Thickness, Qt::CustomDashLine, Qt::FlatCap));
    QPen pen = painter.pen();
    pen.setDashPattern({3, 3});
    painter.setPen(pen);
    const int half = Thickness / 2;
    painter.drawRect(rect().adjusted(half, half, -half - 1, -half - 1));
}
