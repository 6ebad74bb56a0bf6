#include "playback/keys/KeyBoxLayout.h"

#include <QChar>
#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace kel
{

namespace
{

constexpr double kMargin = 8.0;
constexpr double kGap = 4.0; // between boxes, to the canvas edges, and around chip and label
constexpr double kLabelScale = 0.8;
constexpr double kLegiblePixelSize = 9.0;

/// Replaces characters that no installed font can draw by their code points.
QString drawable(const QString &text, const QFont &font)
{
    const QFontMetricsF metrics(font);
    QString result;
    for (const uint character : text.toUcs4()) {
        if (metrics.inFontUcs4(character))
            result += QString::fromUcs4(&character, 1);
        else
            result += QStringLiteral("U+%1").arg(character, 4, 16, QLatin1Char('0')).toUpper();
    }
    return result;
}

QSizeF sizeOf(const QString &text, const QFont &font)
{
    if (text.isEmpty())
        return QSizeF();
    const QFontMetricsF metrics(font);
    const QRectF ink = metrics.boundingRect(text);
    return {std::ceil(std::max(ink.width(), metrics.horizontalAdvance(text))), std::ceil(ink.height())};
}

} // namespace

KeyBoxLayout::KeyBoxLayout(const KeyDisplayItem &item, const KeyOverlayStyle &style, const Canvas &canvas,
                           double offset, bool isNewest)
    : font(style.font)
    , labelFont(style.font)
    , m_scale(canvas.scale)
    , m_offset(offset)
{
    const QSizeF room = canvas.size - QSizeF(2.0 * kGap, 2.0 * kGap) * m_scale - QSizeF(0.0, offset);
    const bool isTyping = item.type == KeyDisplayItem::Character;
    double pixelSize = std::round((isNewest ? style.fontSizePx : style.historyFontSizePx) * m_scale);
    const double smallest = std::min(pixelSize, std::round(kLegiblePixelSize * m_scale));
    setFontSize(pixelSize);
    setTexts(item);
    QSizeF size = measure();
    for (; pixelSize > smallest; size = measure()) {
        const bool isTooWide = !isTyping && size.width() > room.width();
        const bool isTooHigh = isNewest && size.height() > room.height();
        if (!isTooWide && !isTooHigh)
            break;
        pixelSize = std::max(smallest, pixelSize - 1.0);
        setFontSize(pixelSize);
    }
    if (size.width() > room.width()) {
        shorten(size.width() - room.width(), isTyping);
        size = measure();
    }
    if (size.width() <= room.width() && size.height() <= room.height())
        place(style.displayPos, canvas.size);
}

/// "Ctrl+C" becomes a chip "Ctrl" and the text " + C" beside it. The key itself may be a plus.
void KeyBoxLayout::setTexts(const KeyDisplayItem &item)
{
    const int split = item.text.size() < 3 ? -1 : item.text.lastIndexOf(QLatin1Char('+'), -2);
    if (split >= 1) {
        chipText = item.text.left(split);
        text = QStringLiteral(" + ") + drawable(item.text.mid(split + 1), font);
    } else {
        text = drawable(item.text, font);
    }
    if (item.count > 1)
        labelText = QStringLiteral("x%1").arg(item.count);
}

void KeyBoxLayout::setFontSize(double pixelSize)
{
    font.setPixelSize(std::max(1, int(std::lround(pixelSize))));
    labelFont.setPixelSize(std::max(1, int(std::lround(pixelSize * kLabelScale))));
}

/// Returns the size of box and label together.
QSizeF KeyBoxLayout::measure()
{
    m_textSize = sizeOf(text, font);
    m_chipSize = sizeOf(chipText, font);
    if (!chipText.isEmpty())
        m_chipSize.rwidth() += 2.0 * kGap * m_scale;
    m_labelSize = sizeOf(labelText, labelFont);
    m_boxWidth = m_chipSize.width() + m_textSize.width() + 2.0 * kMargin * m_scale;
    m_boxHeight = std::max(m_chipSize.height(), m_textSize.height()) + 2.0 * kMargin * m_scale;
    const double labelWidth = labelText.isEmpty() ? 0.0 : m_labelSize.width() + 2.0 * kGap * m_scale;
    return {m_boxWidth + labelWidth, m_boxHeight};
}

/// Shortens the text by `width`: the modifiers, if there are any, else the key. With `keepsEnd`, which is for typed
/// text, at its beginning.
void KeyBoxLayout::shorten(double width, bool keepsEnd)
{
    const QFontMetricsF metrics(font);
    QString &part = chipText.isEmpty() ? text : chipText;
    const double room = metrics.horizontalAdvance(part) - width - 1.0;
    part = metrics.elidedText(part, keepsEnd ? Qt::ElideLeft : Qt::ElideRight, std::max(0.0, room));
    if (part.isEmpty())
        part = QChar(0x2026);
}

void KeyBoxLayout::place(int displayPos, const QSizeF &canvas)
{
    const double gap = kGap * m_scale;
    const double margin = kMargin * m_scale;
    QRectF box(0.0, canvas.height() - m_offset - gap - m_boxHeight, m_boxWidth, m_boxHeight);
    switch (displayPos) {
    case KeyOverlayStyle::BottomLeft:
        box.moveLeft(gap);
        break;
    case KeyOverlayStyle::BottomRight:
        box.moveRight(canvas.width() - gap);
        break;
    default:
        box.moveLeft((canvas.width() - m_boxWidth) / 2.0);
        break;
    }
    // The label is to the right of the box, and must stay inside the canvas, too.
    const double labelSpace = labelText.isEmpty() ? 0.0 : m_labelSize.width() + 2.0 * gap;
    box.moveLeft(std::min(box.left(), canvas.width() - gap - m_boxWidth - labelSpace));
    background = box.adjusted(0.0, 0.0, labelSpace, 0.0);

    const QRectF inner = box.adjusted(margin, margin, -margin, -margin);
    chip = QRectF(QPointF(inner.left(), inner.bottom() - m_chipSize.height()), m_chipSize);
    textRect = QRectF(QPointF(inner.right() - m_textSize.width(), inner.bottom() - m_textSize.height()), m_textSize);
    label = QRectF(QPointF(box.right() + gap, box.center().y() - m_labelSize.height() / 2.0), m_labelSize);
}

} // namespace kel
