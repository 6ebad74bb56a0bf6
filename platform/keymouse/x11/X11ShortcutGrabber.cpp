#include "keymouse/x11/X11ShortcutGrabber.h"

#include "keymouse/xkb/Keysym.h"
#include "x11/XcbPtr.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <xcb/xcb.h>
#define explicit explicit_ // <xcb/xkb.h> uses the keyword as a field name
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>

namespace kel
{

namespace
{

constexpr std::uint16_t kChordModifiers = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;

} // namespace

X11ShortcutGrabber::X11ShortcutGrabber()
{
    int number = 0;
    m_connection = xcb_connect(nullptr, &number);
    if (!isConnected())
        return;
    xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (; screen.rem > 1 && number > 0; --number)
        xcb_screen_next(&screen);
    m_root = screen.data->root;
    subscribeToKeyboard();
    readKeyboard();
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11ShortcutGrabber::readEvents);
}

X11ShortcutGrabber::~X11ShortcutGrabber()
{
    m_notifier.reset();
    xcb_disconnect(m_connection);
}

bool X11ShortcutGrabber::isConnected() const
{
    return !xcb_connection_has_error(m_connection);
}

QString X11ShortcutGrabber::problem()
{
    return isConnected() ? QString()
                         : QCoreApplication::translate("GlobalShortcut", "There is no connection to an X server.");
}

QString X11ShortcutGrabber::grab(int combination, const ShortcutPurpose &)
{
    if (!isConnected())
        return problem();
    const Chord chord = chordOf(combination);
    if (chord.keycodes.empty())
        return QCoreApplication::translate("GlobalShortcut", "The keyboard has no such key.");
    if (!grabChord(chord))
        return QCoreApplication::translate("GlobalShortcut", "Another program uses it.");
    m_grabbed.insert(combination, chord);
    readEvents(); // events received while waiting for replies do not trigger the notifier
    return QString();
}

void X11ShortcutGrabber::release(int combination)
{
    releaseChord(m_grabbed.take(combination));
}

/// Makes a held key repeat as presses only, without releases in between, and subscribes to keyboard changes. Without
/// XKB the server reports changes as MappingNotify, and a held key repeats as if it were pressed again and again.
void X11ShortcutGrabber::subscribeToKeyboard()
{
    const xcb_query_extension_reply_t *const extension = xcb_get_extension_data(m_connection, &xcb_xkb_id);
    const XcbPtr<xcb_xkb_use_extension_reply_t> use(
        extension && extension->present
            ? xcb_xkb_use_extension_reply(m_connection, xcb_xkb_use_extension(m_connection, 1, 0), nullptr)
            : nullptr);
    if (!use || !use->supported)
        return;
    m_xkbEvent = extension->first_event;
    constexpr std::uint32_t kDetectableRepeat = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const auto flags =
        xcb_xkb_per_client_flags(m_connection, XCB_XKB_ID_USE_CORE_KBD, kDetectableRepeat, kDetectableRepeat, 0, 0, 0);
    xcb_discard_reply(m_connection, flags.sequence);
    constexpr std::uint16_t kEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t kMapParts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    xcb_xkb_select_events(m_connection, XCB_XKB_ID_USE_CORE_KBD, kEvents, 0, kEvents, kMapParts, kMapParts, nullptr);
}

void X11ShortcutGrabber::readKeyboard()
{
    const xcb_setup_t *const setup = xcb_get_setup(m_connection);
    m_firstKeycode = setup->min_keycode;
    const auto keyboardCookie = xcb_get_keyboard_mapping(m_connection, setup->min_keycode,
                                                         std::uint8_t(setup->max_keycode - setup->min_keycode + 1));
    const auto modifierCookie = xcb_get_modifier_mapping(m_connection);
    const XcbPtr<xcb_get_keyboard_mapping_reply_t> keyboard(
        xcb_get_keyboard_mapping_reply(m_connection, keyboardCookie, nullptr));
    const XcbPtr<xcb_get_modifier_mapping_reply_t> modifiers(
        xcb_get_modifier_mapping_reply(m_connection, modifierCookie, nullptr));
    if (!keyboard || !modifiers)
        return; // the previous mapping stays in use
    m_columns = keyboard->keysyms_per_keycode;
    const xcb_keysym_t *const keysyms = xcb_get_keyboard_mapping_keysyms(keyboard.get());
    m_keysyms.assign(keysyms, keysyms + xcb_get_keyboard_mapping_keysyms_length(keyboard.get()));
    m_keysPerModifier = modifiers->keycodes_per_modifier;
    const xcb_keycode_t *const keys = xcb_get_modifier_mapping_keycodes(modifiers.get());
    m_modifierKeys.assign(keys, keys + xcb_get_modifier_mapping_keycodes_length(modifiers.get()));
}

X11ShortcutGrabber::Chord X11ShortcutGrabber::chordOf(int combination) const
{
    const std::uint32_t keysym = keysymOf(combination & ~int(Qt::KeyboardModifierMask));
    Chord chord;
    if (combination & Qt::ShiftModifier)
        chord.modifiers |= XCB_MOD_MASK_SHIFT;
    if (combination & Qt::ControlModifier)
        chord.modifiers |= XCB_MOD_MASK_CONTROL;
    if (combination & Qt::AltModifier)
        chord.modifiers |= XCB_MOD_MASK_1;
    if (combination & Qt::MetaModifier)
        chord.modifiers |= XCB_MOD_MASK_4;
    // In any layout: while a Cyrillic layout is active, the shortcut still is on the same key.
    for (std::size_t i = 0; keysym != 0 && i < m_keysyms.size(); ++i) {
        const auto keycode = std::uint8_t(m_firstKeycode + int(i) / m_columns);
        if (m_keysyms[i] == keysym && (chord.keycodes.empty() || chord.keycodes.back() != keycode))
            chord.keycodes.push_back(keycode);
    }
    return chord;
}

/// The modifier mask of the key with this keysym; 0 when it is not a modifier.
std::uint16_t X11ShortcutGrabber::maskOf(std::uint32_t keysym) const
{
    for (std::size_t i = 0; i < m_modifierKeys.size(); ++i) {
        const int row = m_modifierKeys[i] - m_firstKeycode;
        if (row < 0)
            continue;
        const auto first = m_keysyms.begin() + row * m_columns;
        if (std::find(first, first + m_columns, keysym) != first + m_columns)
            return std::uint16_t(1u << (int(i) / m_keysPerModifier));
    }
    return 0;
}

bool X11ShortcutGrabber::grabChord(const Chord &chord)
{
    // A grab matches exactly these modifiers, and the locks count as modifiers.
    const std::uint16_t numLock = maskOf(XKB_KEY_Num_Lock);
    std::vector<xcb_void_cookie_t> cookies;
    for (const std::uint8_t keycode : chord.keycodes) {
        for (const int locks : {0, int(XCB_MOD_MASK_LOCK), int(numLock), XCB_MOD_MASK_LOCK | numLock}) {
            if (locks == 0 || numLock != 0 || locks == XCB_MOD_MASK_LOCK)
                cookies.push_back(xcb_grab_key_checked(m_connection, 1, m_root, std::uint16_t(chord.modifiers | locks),
                                                       keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        }
    }
    bool isGrabbed = true;
    for (const xcb_void_cookie_t cookie : cookies) {
        const XcbPtr<xcb_generic_error_t> error(xcb_request_check(m_connection, cookie));
        isGrabbed = isGrabbed && !error;
    }
    if (!isGrabbed)
        releaseChord(chord);
    return isGrabbed;
}

void X11ShortcutGrabber::releaseChord(const Chord &chord)
{
    const std::uint16_t numLock = maskOf(XKB_KEY_Num_Lock);
    for (const std::uint8_t keycode : chord.keycodes) {
        for (const int locks : {0, int(XCB_MOD_MASK_LOCK), int(numLock), XCB_MOD_MASK_LOCK | numLock})
            xcb_ungrab_key(m_connection, keycode, m_root, std::uint16_t(chord.modifiers | locks));
    }
    xcb_flush(m_connection);
}

void X11ShortcutGrabber::readEvents()
{
    bool hasKeyboardChanged = false;
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        const int type = event->response_type & 0x7f;
        hasKeyboardChanged =
            hasKeyboardChanged || type == XCB_MAPPING_NOTIFY || (m_xkbEvent != 0 && type == m_xkbEvent);
        switch (type) {
        case XCB_KEY_PRESS:
            keyPressed(*reinterpret_cast<const xcb_key_press_event_t *>(event.get()));
            break;
        case XCB_KEY_RELEASE:
            m_heldKey = 0;
            break;
        default:
            break;
        }
    }
    if (!isConnected()) {
        m_notifier->setEnabled(false);
    } else if (hasKeyboardChanged) {
        for (const Chord &chord : qAsConst(m_grabbed))
            releaseChord(chord);
        readKeyboard();
        for (auto known = m_grabbed.begin(); known != m_grabbed.end(); ++known) {
            *known = chordOf(known.key());
            grabChord(*known);
        }
    }
}

void X11ShortcutGrabber::keyPressed(const xcb_key_press_event_t &event)
{
    if (event.detail == m_heldKey)
        return;
    m_heldKey = event.detail;
    for (auto known = m_grabbed.cbegin(); known != m_grabbed.cend(); ++known) {
        const std::vector<std::uint8_t> &keycodes = known->keycodes;
        if ((event.state & kChordModifiers) == known->modifiers &&
            std::find(keycodes.begin(), keycodes.end(), event.detail) != keycodes.end()) {
            emit pressed(known.key());
            return; // a receiver may have changed the shortcuts
        }
    }
}

} // namespace kel
