#include "keymouse/windows/WindowsKeymap.h"

#include <QChar>
#include <QString>

#include <iterator>
#include <utility>

namespace kel
{

namespace
{

// In layouts with AltGr, Windows generates a left Ctrl press with this scan code before it.
constexpr DWORD kSyntheticCtrlScanCode = 0x21d;

// Does not change the state of the layout, which may hold a dead key (since Windows 10).
constexpr UINT kKeepState = 1u << 2;

/// Letter keys have the code of the upper-case letter.
int keyOfCharacter(wchar_t character)
{
    return QChar::isPrint(uint(character)) ? int(QChar::toUpper(uint(character))) : 0;
}

} // namespace

WindowsKeymap::WindowsKeymap()
    : m_capsLock(GetKeyState(VK_CAPITAL) & 1)
    , m_numLock(GetKeyState(VK_NUMLOCK) & 1)
{
    for (const BYTE key : kModifierKeys)
        m_down.set(key, GetAsyncKeyState(key) < 0);
}

int WindowsKeymap::qtKey(const KBDLLHOOKSTRUCT &event, bool isPressed, HKL layout)
{
    const DWORD virtualKey = event.vkCode;
    if (virtualKey >= kKeyCount)
        return 0;
    if (virtualKey == VK_LCONTROL && (event.scanCode & 0xffff) == kSyntheticCtrlScanCode) {
        m_altGr = m_altGr || isPressed;
        return 0;
    }
    // A release reports the same key as its press, even if a modifier has changed in between.
    int key = 0;
    if (isPressed)
        m_pressedAs[virtualKey] = key = translate(event, layout);
    else
        key = m_pressedAs[virtualKey] ? std::exchange(m_pressedAs[virtualKey], 0) : translate(event, layout);
    trackModifiers(virtualKey, isPressed);
    return key;
}

std::vector<int> WindowsKeymap::releaseAllBut(const ModifierKeySet &held)
{
    std::vector<int> released;
    for (std::size_t i = 0; i < kModifierKeys.size(); ++i) {
        const BYTE virtualKey = kModifierKeys[i];
        if (held.test(i) || !isDown(virtualKey))
            continue;
        trackModifiers(virtualKey, false);
        if (const int key = std::exchange(m_pressedAs[virtualKey], 0))
            released.push_back(key);
    }
    return released;
}

void WindowsKeymap::trackModifiers(DWORD virtualKey, bool isPressed)
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

int WindowsKeymap::translate(const KBDLLHOOKSTRUCT &event, HKL layout) const
{
    const DWORD virtualKey = event.vkCode;
    if (virtualKey == VK_PACKET) // a program sends a character that may be on no key
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

/// The character that the key types, or would type without Ctrl and Alt.
int WindowsKeymap::character(DWORD virtualKey, DWORD scanCode, HKL layout) const
{
    std::array<BYTE, kKeyCount> state{};
    const auto hold = [&state](int key, bool held) { state[std::size_t(key)] = held ? 0x80 : 0; };
    hold(VK_SHIFT, isDown(VK_LSHIFT) || isDown(VK_RSHIFT));
    hold(VK_CONTROL, m_altGr);
    hold(VK_MENU, m_altGr);
    state[VK_CAPITAL] = m_capsLock ? 1 : 0;
    state[VK_NUMLOCK] = m_numLock ? 1 : 0;
    wchar_t typed[8] = {};
    // The result is negative for a dead key; the buffer then holds its accent.
    if (ToUnicodeEx(virtualKey, scanCode, state.data(), typed, int(std::size(typed)), kKeepState, layout) != 0) {
        if (const int key = keyOfCharacter(typed[0]))
            return key;
    }
    return keyOfCharacter(wchar_t(MapVirtualKeyExW(virtualKey, MAPVK_VK_TO_CHAR, layout) & 0xffff));
}

} // namespace kel
