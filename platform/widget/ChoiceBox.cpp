#include "widget/ChoiceBox.h"

#include "widget/ControlPainting.h"
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
    ++text; // an advance that was rounded down would elide the text
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
    kel::ControlPainting::paintField(painter, *this, kRadius * scale);

    const QColor textColor = palette().color(QPalette::Text);
    const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
    const double half = kArrowWidth * scale / 2;
    const double arrowX = kPadding * scale + half;
    const QPointF tip(isRightToLeft ? arrowX : width() - arrowX, height() / 2.0 + half / 2);
    kel::ControlPainting::paintArrow(painter, *this, tip, kArrowWidth * scale, textColor);

    const int padding = qRound(kPadding * scale);
    const int arrow = qRound((kPadding + kArrowWidth + kArrowGap) * scale);
    const QRect textRect = rect().adjusted(isRightToLeft ? arrow : padding, 0, isRightToLeft ? -padding : -arrow, 0);
    painter.setPen(textColor);
    painter.drawText(textRect, Qt::AlignVCenter | Qt::AlignLeading,
                     fontMetrics().elidedText(currentText(), Qt::ElideRight, textRect.width()));
}
