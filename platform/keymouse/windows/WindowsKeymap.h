#pragma once

#include <array>
#include <bitset>

#include <windows.h>

namespace kel
{

/// Says which Qt::Key a key means in a keyboard layout, as Qt's own key events would. Follows the modifiers by the keys
/// that go through it, and never touches the state in which a dead key waits for its letter.
class WindowsKeymap
{
public:
    /// The modifiers are those that are held now.
    WindowsKeymap();

    /// The Qt::Key of a key going down or up, or 0 for a key without meaning.
    int qtKey(const KBDLLHOOKSTRUCT &event, bool isPressed, HKL layout);

private:
    static constexpr unsigned keyCount = 256;

    int keyNow(const KBDLLHOOKSTRUCT &event, HKL layout) const;
    int character(DWORD virtualKey, DWORD scanCode, HKL layout) const;
    void follow(DWORD virtualKey, bool isPressed);
    bool isDown(unsigned virtualKey) const { return m_down.test(virtualKey); }

    std::bitset<keyCount> m_down;
    std::array<int, keyCount> m_pressedAs{}; // the Qt::Key that each key was when it went down
    bool m_capsLock;
    bool m_numLock;
    bool m_altGr = false; // the right Alt key counts as AltGr, until it goes up
};

} // namespace kel
