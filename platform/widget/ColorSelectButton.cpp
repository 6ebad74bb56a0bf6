#include "widget/ColorSelectButton.h"

#include "widget/ControlPainting.h"
#include "widget/ScaleFactor.h"

#include <QColorDialog>
#include <QPainter>
#include <QPainterPath>

namespace
{

constexpr int kWidth = 44;
constexpr int kHeight = 24;
constexpr double kRadius = 5;
constexpr double kInset = 3;

// The background of a translucent color.
QBrush checkers(int edge)
{
    QPixmap tile(2 * edge, 2 * edge);
    tile.fill(Qt::white);
    QPainter painter(&tile);
    painter.fillRect(0, 0, edge, edge, Qt::lightGray);
    painter.fillRect(edge, edge, edge, edge, Qt::lightGray);
    return QBrush(tile);
}

} // namespace

ColorSelectButton::ColorSelectButton(QWidget *parent)
    : QPushButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QPushButton::clicked, this, &ColorSelectButton::choose);
}

void ColorSelectButton::setColor(const QColor &color)
{
    m_color = color;
    update();
}

QSize ColorSelectButton::sizeHint() const
{
    const double scale = scaleFactor(this);
    return {qRound(kWidth * scale), qRound(kHeight * scale)};
}

void ColorSelectButton::choose()
{
    auto *const dialog = new QColorDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QColorDialog::ShowAlphaChannel); // before the color, which would lose its opacity
    dialog->setCurrentColor(m_color);
    connect(dialog, &QColorDialog::currentColorChanged, this, &ColorSelectButton::applyColor);
    connect(dialog, &QColorDialog::rejected, this, [this, before = m_color] { applyColor(before); });
    dialog->open();
}

void ColorSelectButton::applyColor(const QColor &color)
{
    const QColor rgb = color.toRgb(); // colors of different models never compare equal
    if (rgb == m_color)
        return;
    setColor(rgb);
    emit sigColorChanged(rgb);
}

void ColorSelectButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = scaleFactor(this);
    const double radius = kRadius * scale;
    kel::ControlPainting::paintField(painter, *this, radius);

    const double inset = kInset * scale;
    QPainterPath swatch;
    swatch.addRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius - inset / 2,
                          radius - inset / 2);
    painter.setOpacity(isEnabled() ? 1 : 0.4);
    if (m_color.alpha() < 255)
        painter.fillPath(swatch, checkers(qRound(4 * scale)));
    painter.fillPath(swatch, m_color);
}
