#pragma once

#include <QColor>
#include <QFont>
#include <QFontMetricsF>

#include <cmath>

/// The colours and fonts of the scene.
namespace SceneColors
{

inline const QColor EditorBackground(0x1c, 0x20, 0x2b);
inline const QColor EditorChrome(0x15, 0x18, 0x21);
inline const QColor EditorSelection(0x2a, 0x31, 0x44);
inline const QColor TerminalBackground(0x12, 0x15, 0x1d);
inline const QColor Text(0xd5, 0xdb, 0xe8);
inline const QColor Dimmed(0x8a, 0x93, 0xa8);
inline const QColor LineNumber(0x4b, 0x54, 0x6a);
inline const QColor Comment(0x6f, 0x8f, 0x7a);
inline const QColor String(0xb5, 0xd9, 0x83);
inline const QColor Preprocessor(0xe0, 0x8f, 0xb8);
inline const QColor Number(0xf2, 0xa9, 0x6c);
inline const QColor Keyword(0xc0, 0x9b, 0xf5);
inline const QColor Type(0x73, 0xcb, 0xe3);
inline const QColor Call(0x7d, 0xae, 0xff);
inline const QColor Member(0xef, 0x8e, 0x8e);
inline const QColor Prompt(0x5d, 0xd3, 0x9e);
inline const QColor Accent(0x33, 0x88, 0xff);
inline const QColor AccentEnd(0x9b, 0x5c, 0xf6);

inline QFont codeFont(int px)
{
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setPixelSize(px);
    // Letters stand in columns of whole pixels, as in a real editor.
    const double advance = QFontMetricsF(font).horizontalAdvance(QLatin1Char('m'));
    font.setLetterSpacing(QFont::AbsoluteSpacing, std::round(advance) - advance);
    return font;
}

inline QFont windowFont(int px, int weight = QFont::Normal)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(px);
    font.setWeight(weight);
    return font;
}

} // namespace SceneColors
