#include "keymouse/windows/WindowsKeymap.h"

#include "keymouse/windows/VirtualKeys.h"

#include <QChar>
#include <QString>

#include <iterator>
#include <utility>

namespace kel
{

namespace
{

// A layout with AltGr announces it by a left Ctrl key that nobody pressed.
constexpr DWORD inventedScanCode = 0x21d;

// The state of the layout, in which a dead key may wait, stays as it is (since Windows 10).
constexpr UINT keepState = 1u << 2;

/// The keys of letters are named by the upper-case one.
int keyOfCharacter(wchar_t character)
{
    return QChar::isPrint(uint(character)) ? int(QChar::toUpper(uint(character))) : 0;
}

} // namespace

WindowsKeymap::WindowsKeymap()
    : m_capsLock(GetKeyState(VK_CAPITAL) & 1)
    , m_numLock(GetKeyState(VK_NUMLOCK) & 1)
{
    for (const int key : {VK_LSHIFT, VK_RSHIFT, VK_LCONTROL, VK_RCONTROL, VK_LMENU, VK_RMENU})
        m_down.set(unsigned(key), GetAsyncKeyState(key) < 0);
}

int WindowsKeymap::qtKey(const KBDLLHOOKSTRUCT &event, bool isPressed, HKL layout)
{
    const DWORD virtualKey = event.vkCode;
    if (virtualKey >= keyCount)
        return 0;
    if (virtualKey == VK_LCONTROL && (event.scanCode & 0xffff) == inventedScanCode) {
        m_altGr = m_altGr || isPressed;
        return 0;
    }
    // What went down goes up under the same name, even if a modifier has changed meanwhile.
    int key = 0;
    if (isPressed)
        m_pressedAs[virtualKey] = key = keyNow(event, layout);
    else
        key = m_pressedAs[virtualKey] ? std::exchange(m_pressedAs[virtualKey], 0) : keyNow(event, layout);
    follow(virtualKey, isPressed);
    return key;
}

void WindowsKeymap::follow(DWORD virtualKey, bool isPressed)
{
    const bool isRepeated = isPressed && isDown(virtualKey);
    m_down.set(virtualKey, isPressed);
    if (virtualKey == VK_CAPITAL && isPressed && !isRepeated)
        m_capsLock = !m_capsLock;
    if (virtualKey == VK_NUMLOCK && isPressed && !isRepeated)
        m_numLock = !m_numLock;
    if (virtualKey == VK_RMENU && !isPressed)
        m_altGr = false;
}

int WindowsKeymap::keyNow(const KBDLLHOOKSTRUCT &event, HKL layout) const
{
    const DWORD virtualKey = event.vkCode;
    if (virtualKey == VK_PACKET) // a program types a character that may be on no key
        return keyOfCharacter(wchar_t(event.scanCode));
    if (virtualKey == VK_RETURN && (event.flags & LLKHF_EXTENDED))
        return Qt::Key_Enter;
    if (virtualKey == VK_TAB && (isDown(VK_LSHIFT) || isDown(VK_RSHIFT)))
        return Qt::Key_Backtab;
    if (virtualKey == VK_RMENU && m_altGr)
        return Qt::Key_AltGr;
    if (const int key = qtKeyOf(virtualKey))
        return key;
    return character(virtualKey, event.scanCode, layout);
}

/// The character that the key types, or would type if Ctrl and Alt did not make it a shortcut.
int WindowsKeymap::character(DWORD virtualKey, DWORD scanCode, HKL layout) const
{
    std::array<BYTE, keyCount> state{};
    const auto hold = [&state](int key, bool held) { state[std::size_t(key)] = held ? 0x80 : 0; };
    hold(VK_SHIFT, isDown(VK_LSHIFT) || isDown(VK_RSHIFT));
    hold(VK_CONTROL, m_altGr);
    hold(VK_MENU, m_altGr);
    state[VK_CAPITAL] = m_capsLock ? 1 : 0;
    state[VK_NUMLOCK] = m_numLock ? 1 : 0;
    wchar_t typed[8] = {};
    // Negative for a dead key, whose own accent it then is.
    if (ToUnicodeEx(virtualKey, scanCode, state.data(), typed, int(std::size(typed)), keepState, layout) != 0) {
        if (const int key = keyOfCharacter(typed[0]))
            return key;
    }
    return keyOfCharacter(wchar_t(MapVirtualKeyExW(virtualKey, MAPVK_VK_TO_CHAR, layout) & 0xffff));
}

} // namespace kel
