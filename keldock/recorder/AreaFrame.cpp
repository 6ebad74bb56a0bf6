#include "recorder/AreaFrame.h"

#include "common/WindowPlacement.h"
#include "widgets/DockColors.h"

#include <QPainter>

namespace
{

constexpr int kGap = 1; // keeps the frame out of the recording when a scaled screen rounds coordinates
constexpr int kThickness = 3;

} // namespace

AreaFrame::AreaFrame(QWidget *parent)
    : QWidget(parent, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::BypassWindowManagerHint |
                          Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus | Qt::ToolTip)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(tr("Recorded area"));
}

void AreaFrame::showAround(const QRect &area)
{
    if (area.isEmpty() || !canPlaceWindows()) {
        hide();
        return;
    }
    const int margin = kGap + kThickness;
    setGeometry(area.adjusted(-margin, -margin, margin, margin));
    const QRect hole = rect().adjusted(kThickness, kThickness, -kThickness, -kThickness);
    // A mask rather than a translucent window, which needs a compositor.
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
    painter.fillRect(rect(), QColor(m_look == Look::Recording ? DockColors::kRecording
                                    : m_look == Look::Paused  ? DockColors::kPaused
                                                              : DockColors::kReady));
    if (m_look == Look::Recording)
        return;
    painter.setPen(QPen(Qt::white, kThickness, Qt::CustomDashLine, Qt::FlatCap));
    QPen pen = painter.pen();
    pen.setDashPattern({3, 3});
    painter.setPen(pen);
    const int half = kThickness / 2;
    painter.drawRect(rect().adjusted(half, half, -half - 1, -half - 1));
}
