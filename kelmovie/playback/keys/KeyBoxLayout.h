#pragma once

#include "playback/keys/KeyDisplayList.h"
#include "playback/keys/KeyOverlayStyle.h"

#include <QRectF>
#include <QSizeF>

namespace kel
{

/// Where everything of one box lies, in pixels of the canvas. The box is whole inside the canvas: a text too wide is
/// set smaller, then shortened; a box for which there is no room at all is not there.
class KeyBoxLayout
{
public:
    struct Frame {
        QSizeF canvas;
        double scale = 1.0; ///< canvas pixels per pixel of the style
    };

    /// A box whose bottom lies `offset` and a gap above the canvas' bottom. The newest box is rather set smaller than
    /// left out where the canvas is low.
    KeyBoxLayout(const KeyDisplayItem &item, const KeyOverlayStyle &style, const Frame &frame, double offset,
                 bool isNewest);

    bool isEmpty() const { return background.isEmpty(); }
    double radius() const { return 4.0 * m_scale; }
    /// The offset of the box above this one.
    double nextOffset() const { return m_offset + m_boxHeight + 4.0 * m_scale; }

    QFont font;
    QFont labelFont;
    QString chipText; ///< modifiers before a key; may be empty
    QString text;
    QString labelText; ///< how often it was typed; empty for once
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
