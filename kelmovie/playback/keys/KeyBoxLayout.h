#pragma once

#include "playback/keys/KeyDisplayList.h"
#include "playback/keys/KeyOverlayStyle.h"

#include <QRectF>
#include <QSizeF>

namespace kel
{

/// The layout of one box, in pixels of the canvas. The box is always inside the canvas: text that is too wide gets a
/// smaller font, and is then shortened; without room even for that, the box is empty.
class KeyBoxLayout
{
public:
    struct Canvas {
        QSizeF size;
        double scale = 1.0; ///< canvas pixels per pixel of the style
    };

    /// A box whose bottom is `offset` and a gap above the bottom of the canvas. Only the newest box gets a smaller font
    /// if the canvas is too low for it.
    KeyBoxLayout(const KeyDisplayItem &item, const KeyOverlayStyle &style, const Canvas &canvas, double offset,
                 bool isNewest);

    bool isEmpty() const { return background.isEmpty(); }
    double radius() const { return 4.0 * m_scale; }
    /// The offset of the box above this one.
    double nextOffset() const { return m_offset + m_boxHeight + 4.0 * m_scale; }

    QFont font;
    QFont labelFont;
    QString chipText; ///< modifiers before a key; may be empty
    QString text;
    QString labelText; ///< number of repetitions, such as "x2"; empty for one
    QRectF background;
    QRectF chip;
    QRectF textRect;
    QRectF label;

private:
    void setTexts(const KeyDisplayItem &item);
    void setFontSize(double pixelSize);
    QSizeF measure();
    void shorten(double width, bool keepsEnd);
    void place(int displayPos, const QSizeF &canvas);

    const double m_scale;
    const double m_offset;
    double m_boxHeight = 0.0;
    double m_boxWidth = 0.0;
    QSizeF m_chipSize;
    QSizeF m_textSize;
    QSizeF m_labelSize;
};

} // namespace kel
