#include "keymouse/xkb/Keysym.h"

#include <Qt>

#include <xkbcommon/xkbcommon-keysyms.h>

#include <array>

namespace kel
{

namespace
{

struct NamedKey {
    int key;
    std::uint32_t keysym;
};
constexpr std::array kNamedKeys{
    NamedKey{Qt::Key_Space, XKB_KEY_space},
    NamedKey{Qt::Key_Tab, XKB_KEY_Tab},
    NamedKey{Qt::Key_Return, XKB_KEY_Return},
    NamedKey{Qt::Key_Escape, XKB_KEY_Escape},
    NamedKey{Qt::Key_Insert, XKB_KEY_Insert},
    NamedKey{Qt::Key_Delete, XKB_KEY_Delete},
    NamedKey{Qt::Key_Home, XKB_KEY_Home},
    NamedKey{Qt::Key_End, XKB_KEY_End},
    NamedKey{Qt::Key_PageUp, XKB_KEY_Prior},
    NamedKey{Qt::Key_PageDown, XKB_KEY_Next},
    NamedKey{Qt::Key_Left, XKB_KEY_Left},
    NamedKey{Qt::Key_Right, XKB_KEY_Right},
    NamedKey{Qt::Key_Up, XKB_KEY_Up},
    NamedKey{Qt::Key_Down, XKB_KEY_Down},
    NamedKey{Qt::Key_Pause, XKB_KEY_Pause},
    NamedKey{Qt::Key_Print, XKB_KEY_Print},
    NamedKey{Qt::Key_ScrollLock, XKB_KEY_Scroll_Lock},
};

} // namespace

std::uint32_t keysymOf(int key)
{
    if (key >= Qt::Key_A && key <= Qt::Key_Z)
        return XKB_KEY_a + std::uint32_t(key - Qt::Key_A);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35)
        return XKB_KEY_F1 + std::uint32_t(key - Qt::Key_F1);
    for (const NamedKey &named : kNamedKeys) {
        if (named.key == key)
            return named.keysym;
    }
    return key > Qt::Key_Space && key <= Qt::Key_AsciiTilde ? std::uint32_t(key)
                                                            : 0; // Latin-1 has the same codes in both
}

} // namespace kel
