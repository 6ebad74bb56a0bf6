#pragma once

#include <QColor>
#include <QFont>
#include <QFontMetricsF>

#include <cmath>

/// The colors and fonts of the scene.
namespace SceneColors
{

inline const QColor kEditorBackground(0x1c, 0x20, 0x2b);
inline const QColor kEditorChrome(0x15, 0x18, 0x21);
inline const QColor kEditorSelection(0x2a, 0x31, 0x44);
inline const QColor kTerminalBackground(0x12, 0x15, 0x1d);
inline const QColor kText(0xd5, 0xdb, 0xe8);
inline const QColor kDimmed(0x8a, 0x93, 0xa8);
inline const QColor kLineNumber(0x4b, 0x54, 0x6a);
inline const QColor kComment(0x6f, 0x8f, 0x7a);
inline const QColor kString(0xb5, 0xd9, 0x83);
inline const QColor kPreprocessor(0xe0, 0x8f, 0xb8);
inline const QColor kNumber(0xf2, 0xa9, 0x6c);
inline const QColor kKeyword(0xc0, 0x9b, 0xf5);
inline const QColor kType(0x73, 0xcb, 0xe3);
inline const QColor kCall(0x7d, 0xae, 0xff);
inline const QColor kMember(0xef, 0x8e, 0x8e);
inline const QColor kPrompt(0x5d, 0xd3, 0x9e);
inline const QColor kAccent(0x33, 0x88, 0xff);
inline const QColor kAccentEnd(0x9b, 0x5c, 0xf6);

inline QFont codeFont(int px)
{
    QFont font("DejaVu Sans Mono");
    font.setPixelSize(px);
    // Columns of whole pixels, as in a real editor.
    const double advance = QFontMetricsF(font).horizontalAdvance('m');
    font.setLetterSpacing(QFont::AbsoluteSpacing, std::round(advance) - advance);
    return font;
}

inline QFont windowFont(int px, int weight = QFont::Normal)
{
    QFont font("DejaVu Sans");
    font.setPixelSize(px);
    font.setWeight(weight);
    return font;
}

} // namespace SceneColors
