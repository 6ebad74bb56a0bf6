#include "widget/ControlPainting.h"

#include "widget/ScaleFactor.h"

#include <QPainter>
#include <QWidget>

namespace kel
{

void ControlPainting::paintField(QPainter &painter, const QWidget &widget, double radius)
{
    const QPalette &palette = widget.palette();
    const bool isLit = widget.isEnabled() && (widget.hasFocus() || widget.underMouse());
    const double line = widget.hasFocus() ? 1.5 : 1;
    painter.setPen(QPen(palette.color(isLit ? QPalette::Highlight : QPalette::Mid), line));
    painter.setBrush(palette.color(QPalette::Base));
    painter.drawRoundedRect(QRectF(widget.rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2), radius, radius);
}

void ControlPainting::paintArrow(QPainter &painter, const QWidget &widget, const QPointF &tip, double width,
                                 const QColor &color)
{
    const double half = width / 2;
    painter.setPen(QPen(color, 1.4 * scaleFactor(&widget), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QVector<QPointF>{tip + QPointF(-half, -half), tip, tip + QPointF(half, -half)});
}

} // namespace kel
