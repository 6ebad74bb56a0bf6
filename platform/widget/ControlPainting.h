#pragma once

class QColor;
class QPainter;
class QPointF;
class QWidget;

/// Parts that several controls paint in the same way.
namespace kel::ControlPainting
{

/// The background and border of a field that fills the widget; the border is highlighted while the widget has the focus
/// or the mouse is over it. `radius` is in logical pixels.
void paintField(QPainter &painter, const QWidget &widget, double radius);

/// The arrow of a control that opens a list or a panel; `tip` is its lowest point and `width` its width, in logical
/// pixels.
void paintArrow(QPainter &painter, const QWidget &widget, const QPointF &tip, double width, const QColor &color);

} // namespace kel::ControlPainting
