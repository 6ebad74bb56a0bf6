#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>

/// Source code in small colored letters, drawn once as a tall image and scrolled in an endless loop.
class CodeStrip
{
public:
    /// `width` in pixels; `fontPx` is the height of the font.
    CodeStrip(int width, int fontPx);

    /// Fills `area` with the code, scrolled by `offset` pixels.
    void paint(QPainter &painter, const QRect &area, int offset) const;

private:
    QImage m_strip;
};
