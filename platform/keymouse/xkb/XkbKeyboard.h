#pragma once

#include <QtGlobal>

#include <cstdint>
#include <memory>
#include <unordered_map>

struct xkb_context;
struct xkb_keymap;
struct xkb_state;

namespace kel
{

struct XkbUnref {
    void operator()(xkb_context *context) const;
    void operator()(xkb_keymap *keymap) const;
    void operator()(xkb_state *state) const;
};

using XkbContext = std::unique_ptr<xkb_context, XkbUnref>;
using XkbKeymap = std::unique_ptr<xkb_keymap, XkbUnref>;

/// Translates keycodes to Qt::Key values, as Qt itself does for its windows.
class XkbKeyboard
{
public:
    XkbKeyboard() = default;

    /// The keymap of the keys pressed from now on. Keys that are held keep their names, modifiers are forgotten.
    void setKeymap(XkbKeymap keymap);

    /// Modifiers and layout, which the caller updates; null before the first keymap.
    xkb_state *state() const { return m_state.get(); }

    /// Whether the key repeats while it is held.
    bool repeats(std::uint32_t keycode) const;

    /// The Qt::Key of a keycode in the current state; 0 for a key without meaning. A release has the key of its press,
    /// even if state or keymap have changed in between.
    int qtKey(std::uint32_t keycode, bool isPressed);

private:
    Q_DISABLE_COPY(XkbKeyboard)

    int translate(std::uint32_t keycode) const;
    std::uint32_t symbolOf(std::uint32_t keycode) const;

    XkbKeymap m_keymap;
    std::unique_ptr<xkb_state, XkbUnref> m_state;
    std::unordered_map<std::uint32_t, int> m_pressedAs; // the Qt::Key reported for each pressed key
};

} // namespace kel
