#include "keymouse/windows/VirtualKeys.h"

#include <Qt>

#include <algorithm>
#include <iterator>

namespace kel
{

namespace
{

struct Named {
    BYTE virtualKey;
    int key;
};

// Keys that type no character.
constexpr Named kNamedKeys[] = {
    {VK_CANCEL, Qt::Key_Cancel},
    {VK_BACK, Qt::Key_Backspace},
    {VK_TAB, Qt::Key_Tab},
    {VK_CLEAR, Qt::Key_Clear},
    {VK_RETURN, Qt::Key_Return},
    {VK_SHIFT, Qt::Key_Shift},
    {VK_CONTROL, Qt::Key_Control},
    {VK_MENU, Qt::Key_Alt},
    {VK_PAUSE, Qt::Key_Pause},
    {VK_CAPITAL, Qt::Key_CapsLock},
    {VK_ESCAPE, Qt::Key_Escape},
    {VK_CONVERT, Qt::Key_Henkan},
    {VK_NONCONVERT, Qt::Key_Muhenkan},
    {VK_MODECHANGE, Qt::Key_Mode_switch},
    {VK_SPACE, Qt::Key_Space},
    {VK_PRIOR, Qt::Key_PageUp},
    {VK_NEXT, Qt::Key_PageDown},
    {VK_END, Qt::Key_End},
    {VK_HOME, Qt::Key_Home},
    {VK_LEFT, Qt::Key_Left},
    {VK_UP, Qt::Key_Up},
    {VK_RIGHT, Qt::Key_Right},
    {VK_DOWN, Qt::Key_Down},
    {VK_SELECT, Qt::Key_Select},
    {VK_PRINT, Qt::Key_Printer},
    {VK_EXECUTE, Qt::Key_Execute},
    {VK_SNAPSHOT, Qt::Key_Print},
    {VK_INSERT, Qt::Key_Insert},
    {VK_DELETE, Qt::Key_Delete},
    {VK_HELP, Qt::Key_Help},
    {VK_LWIN, Qt::Key_Meta},
    {VK_RWIN, Qt::Key_Meta},
    {VK_APPS, Qt::Key_Menu},
    {VK_SLEEP, Qt::Key_Sleep},
    {VK_NUMLOCK, Qt::Key_NumLock},
    {VK_SCROLL, Qt::Key_ScrollLock},
    {VK_LSHIFT, Qt::Key_Shift},
    {VK_RSHIFT, Qt::Key_Shift},
    {VK_LCONTROL, Qt::Key_Control},
    {VK_RCONTROL, Qt::Key_Control},
    {VK_LMENU, Qt::Key_Alt},
    {VK_RMENU, Qt::Key_Alt},
    {VK_BROWSER_BACK, Qt::Key_Back},
    {VK_BROWSER_FORWARD, Qt::Key_Forward},
    {VK_BROWSER_REFRESH, Qt::Key_Refresh},
    {VK_BROWSER_STOP, Qt::Key_Stop},
    {VK_BROWSER_SEARCH, Qt::Key_Search},
    {VK_BROWSER_FAVORITES, Qt::Key_Favorites},
    {VK_BROWSER_HOME, Qt::Key_HomePage},
    {VK_VOLUME_MUTE, Qt::Key_VolumeMute},
    {VK_VOLUME_DOWN, Qt::Key_VolumeDown},
    {VK_VOLUME_UP, Qt::Key_VolumeUp},
    {VK_MEDIA_NEXT_TRACK, Qt::Key_MediaNext},
    {VK_MEDIA_PREV_TRACK, Qt::Key_MediaPrevious},
    {VK_MEDIA_STOP, Qt::Key_MediaStop},
    {VK_MEDIA_PLAY_PAUSE, Qt::Key_MediaTogglePlayPause},
    {VK_LAUNCH_MAIL, Qt::Key_LaunchMail},
    {VK_LAUNCH_MEDIA_SELECT, Qt::Key_LaunchMedia},
    {VK_LAUNCH_APP1, Qt::Key_Launch0},
    {VK_LAUNCH_APP2, Qt::Key_Launch1},
    {VK_PLAY, Qt::Key_Play},
    {VK_ZOOM, Qt::Key_Zoom},
};

} // namespace

int qtKeyOf(DWORD virtualKey)
{
    if (virtualKey >= VK_F1 && virtualKey <= VK_F24)
        return Qt::Key_F1 + int(virtualKey - VK_F1);
    const auto found = std::find_if(std::begin(kNamedKeys), std::end(kNamedKeys),
                                    [virtualKey](const Named &named) { return named.virtualKey == virtualKey; });
    return found == std::end(kNamedKeys) ? 0 : found->key;
}

DWORD virtualKeyOf(int key)
{
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24)
        return DWORD(VK_F1 + key - Qt::Key_F1);
    const auto found = std::find_if(std::begin(kNamedKeys), std::end(kNamedKeys),
                                    [key](const Named &named) { return named.key == key; });
    return found == std::end(kNamedKeys) ? 0 : found->virtualKey;
}

} // namespace kel
