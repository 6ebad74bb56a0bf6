#pragma once

#include "keymouse/windows/VirtualKeys.h"

#include <array>
#include <bitset>
#include <vector>

#include <windows.h>

namespace kel
{

/// Maps keys of a keyboard layout to Qt::Key values, as in Qt's own key events. Tracks the modifiers by the keys passed
/// to it, and never changes the dead-key state of the layout.
class WindowsKeymap
{
public:
    /// Starts with the modifiers that are currently held.
    WindowsKeymap();

    /// The Qt::Key of a key press or release; 0 for a key without meaning.
    int qtKey(const KBDLLHOOKSTRUCT &event, bool isPressed, HKL layout);

    /// Releases all modifiers except `held`, and returns their Qt::Key values. While the screen is locked or another
    /// desktop is shown, such as that of a password prompt, releases are not reported.
    std::vector<int> releaseAllBut(const ModifierKeySet &held);

private:
    static constexpr unsigned kKeyCount = 256;

    int translate(const KBDLLHOOKSTRUCT &event, HKL layout) const;
    int character(DWORD virtualKey, DWORD scanCode, HKL layout) const;
    void trackModifiers(DWORD virtualKey, bool isPressed);
    bool isDown(unsigned virtualKey) const { return m_down.test(virtualKey); }

    std::bitset<kKeyCount> m_down;
    std::array<int, kKeyCount> m_pressedAs{}; // the Qt::Key reported for each pressed key
    bool m_capsLock;
    bool m_numLock;
    bool m_altGr = false; // the right Alt key counts as AltGr until its release
};

} // namespace kel
