#include "style/ThemeColors.h"

namespace kel
{

namespace
{

struct NamedColor {
    const char *name;
    QColor light;
    QColor dark;
};

// Bg1 is for windows, Bg2 for fields and lists, Bg3 for floating panels. Texts have a contrast ratio of at least 4.5 on
// all three.
const NamedColor kColors[] = {
    {"ColorMain", {0x33, 0x88, 0xff}, {0x4c, 0x96, 0xff}},
    {"ColorMainText", {0xff, 0xff, 0xff}, {0xff, 0xff, 0xff}},
    {"ColorBg1", {0xf4, 0xf5, 0xf7}, {0x1e, 0x20, 0x24}},
    {"ColorBg2", {0xff, 0xff, 0xff}, {0x26, 0x29, 0x2e}},
    {"ColorBg3", {0xff, 0xff, 0xff}, {0x2d, 0x30, 0x36}},
    {"ColorBg3Border", {0xd5, 0xd9, 0xdf}, {0x48, 0x4c, 0x55}},
    {"ColorText", {0x1f, 0x23, 0x29}, {0xe8, 0xea, 0xed}},
    {"ColorTextWeak", {0x5f, 0x65, 0x6e}, {0xa6, 0xac, 0xb6}},
    {"ColorTextDisabled", {0xa8, 0xad, 0xb5}, {0x6b, 0x70, 0x78}},
    {"ColorHover", {0x1f, 0x23, 0x29, 20}, {0xff, 0xff, 0xff, 24}},
    {"ColorPressed", {0x1f, 0x23, 0x29, 38}, {0xff, 0xff, 0xff, 42}},
    {"ColorDanger", {0xe1, 0x3d, 0x30}, {0xe1, 0x3d, 0x30}},
};

} // namespace

QColor ThemeColors::color(const QString &name, bool dark)
{
    for (const NamedColor &entry : kColors) {
        if (name == QLatin1String(entry.name))
            return dark ? entry.dark : entry.light;
    }
    return {};
}

QPalette ThemeColors::palette(bool dark)
{
    const auto named = [dark](const char *name) { return color(QLatin1String(name), dark); };
    const QColor window = named("ColorBg1");
    const QColor text = named("ColorText");
    const QColor button = dark ? named("ColorBg3") : window;
    QPalette palette(button, window); // Qt derives the shades of bevels from these two
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, text);
    palette.setColor(QPalette::Base, named("ColorBg2"));
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Mid, named("ColorBg3Border"));
    palette.setColor(QPalette::Highlight, named("ColorMain"));
    palette.setColor(QPalette::HighlightedText, named("ColorMainText"));
    palette.setColor(QPalette::Link, named("ColorMain"));
    palette.setColor(QPalette::ToolTipBase, named("ColorBg3"));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, named("ColorTextWeak"));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, named("ColorTextDisabled"));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, named("ColorBg3Border"));
    return palette;
}

bool ThemeColors::isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

} // namespace kel
