#include "widget/ChoiceBox.h"

#include "widget/ScaleFactor.h"

#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace
{

constexpr int kHeight = 24;
constexpr int kPadding = 8;
constexpr int kArrowWidth = 7;
constexpr int kArrowGap = 8;
constexpr double kRadius = 5;

} // namespace

ChoiceBox::ChoiceBox(QWidget *parent)
    : QComboBox(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize ChoiceBox::sizeHint() const
{
    int text = 0;
    for (int i = 0; i < count(); ++i)
        text = std::max(text, fontMetrics().horizontalAdvance(itemText(i)));
    ++text; // an advance that was rounded down would have the text elided
    return {text + qRound((2 * kPadding + kArrowGap + kArrowWidth) * scaleFactor(this)),
            qRound(kHeight * scaleFactor(this))};
}

QSize ChoiceBox::minimumSizeHint() const
{
    return {std::min(sizeHint().width(), qRound(4 * kHeight * scaleFactor(this))), sizeHint().height()};
}

void ChoiceBox::wheelEvent(QWheelEvent *event)
{
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

void ChoiceBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = scaleFactor(this);
    const bool isLit = isEnabled() && (hasFocus() || underMouse());
    const double line = hasFocus() ? 1.5 : 1;
    painter.setPen(QPen(palette().color(isLit ? QPalette::Highlight : QPalette::Mid), line));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2), kRadius * scale,
                            kRadius * scale);

    const QColor ink = palette().color(QPalette::Text);
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    const double half = kArrowWidth * scale / 2;
    const double arrowX = kPadding * scale + half;
    const QPointF tip(isRightToLeft ? arrowX : width() - arrowX, height() / 2.0 + half / 2);
    painter.setPen(QPen(ink, 1.4 * scale, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QVector<QPointF>{tip + QPointF(-half, -half), tip, tip + QPointF(half, -half)});

    const int padding = qRound(kPadding * scale);
    const int arrow = qRound((kPadding + kArrowWidth + kArrowGap) * scale);
    const QRect place = rect().adjusted(isRightToLeft ? arrow : padding, 0, isRightToLeft ? -padding : -arrow, 0);
    painter.setPen(ink);
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeading,
                     fontMetrics().elidedText(currentText(), Qt::ElideRight, place.width()));
}
