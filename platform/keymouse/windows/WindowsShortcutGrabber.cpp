#include "keymouse/windows/WindowsShortcutGrabber.h"

#include "keymouse/windows/VirtualKeys.h"

#include <QCoreApplication>

namespace kel
{

namespace
{

constexpr int kMaxId = 0xbfff; // higher identifiers are reserved for libraries

/// The virtual key of a character in the current layout; Latin letters and digits are the same in every layout.
DWORD keyOfCharacter(int character)
{
    if ((character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9'))
        return DWORD(character);
    if (character > 0xffff)
        return 0;
    const SHORT found = VkKeyScanW(wchar_t(character));
    return found == -1 ? 0 : LOBYTE(found);
}

UINT modifiersOf(int combination)
{
    UINT modifiers = MOD_NOREPEAT;
    if (combination & Qt::ShiftModifier)
        modifiers |= MOD_SHIFT;
    if (combination & Qt::ControlModifier)
        modifiers |= MOD_CONTROL;
    if (combination & Qt::AltModifier)
        modifiers |= MOD_ALT;
    if (combination & Qt::MetaModifier)
        modifiers |= MOD_WIN;
    return modifiers;
}

} // namespace

std::unique_ptr<GlobalShortcutGrabber> GlobalShortcutGrabber::create()
{
    return std::make_unique<WindowsShortcutGrabber>();
}

WindowsShortcutGrabber::WindowsShortcutGrabber()
{
    qApp->installNativeEventFilter(this);
}

WindowsShortcutGrabber::~WindowsShortcutGrabber()
{
    for (auto known = m_combinations.cbegin(); known != m_combinations.cend(); ++known)
        UnregisterHotKey(nullptr, known.key());
}

QString WindowsShortcutGrabber::grab(int combination, const ShortcutPurpose &)
{
    const int key = combination & ~int(Qt::KeyboardModifierMask);
    DWORD virtualKey = virtualKeyOf(key);
    if (virtualKey == 0)
        virtualKey = keyOfCharacter(key);
    if (virtualKey == 0)
        return QCoreApplication::translate("GlobalShortcut", "The keyboard has no such key.");
    const int id = m_lastId % kMaxId + 1;
    if (!RegisterHotKey(nullptr, id, modifiersOf(combination), virtualKey))
        return QCoreApplication::translate("GlobalShortcut", "Another program uses it.");
    m_lastId = id;
    m_combinations.insert(id, combination);
    return QString();
}

void WindowsShortcutGrabber::release(int combination)
{
    const int id = m_combinations.key(combination);
    if (m_combinations.remove(id) != 0)
        UnregisterHotKey(nullptr, id);
}

bool WindowsShortcutGrabber::nativeEventFilter(const QByteArray &, void *message, long *)
{
    const auto known = static_cast<const MSG *>(message);
    const auto combination = known->message == WM_HOTKEY && !known->hwnd ? m_combinations.constFind(int(known->wParam))
                                                                         : m_combinations.cend();
    if (combination == m_combinations.cend())
        return false;
    emit pressed(*combination);
    return true;
}

} // namespace kel
