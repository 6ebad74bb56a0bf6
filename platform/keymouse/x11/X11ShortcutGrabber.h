#pragma once

#include "keymouse/GlobalShortcutGrabber.h"

#include <QHash>

#include <cstdint>
#include <vector>

class QSocketNotifier;
struct xcb_connection_t;
struct xcb_key_press_event_t;

namespace kel
{

/// Grabs keys on the root window of the X screen that $DISPLAY names, through its own connection.
class X11ShortcutGrabber final : public GlobalShortcutGrabber
{
    Q_OBJECT

public:
    X11ShortcutGrabber();
    ~X11ShortcutGrabber() override;

    QString problem() override;
    QString grab(int combination, const ShortcutPurpose &purpose) override;
    void release(int combination) override;

private:
    /// A combination on the current keyboard.
    struct Chord {
        std::uint16_t modifiers = 0;
        std::vector<std::uint8_t> keycodes;
    };

    bool isConnected() const;
    void subscribeToKeyboard();
    void readKeyboard();
    Chord chordOf(int combination) const;
    std::uint16_t maskOf(std::uint32_t keysym) const;
    bool grabChord(const Chord &chord);
    void releaseChord(const Chord &chord);
    void readEvents();
    void keyPressed(const xcb_key_press_event_t &event);

    xcb_connection_t *m_connection;
    std::uint32_t m_root = 0;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QHash<int, Chord> m_grabbed;

    std::vector<std::uint32_t> m_keysyms; // m_columns per keycode
    int m_columns = 0;
    int m_firstKeycode = 0;
    std::vector<std::uint8_t> m_modifierKeys; // m_keysPerModifier per modifier
    int m_keysPerModifier = 0;

    std::uint8_t m_xkbEvent = 0; // the type of XKB events; 0: no XKB
    std::uint8_t m_heldKey = 0;  // the pressed key, to ignore its auto-repeat
};

} // namespace kel
