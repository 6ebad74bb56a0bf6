#pragma once

#include <QtGlobal>

#include <cstdint>
#include <memory>

struct xcb_connection_t;
struct xkb_context;
struct xkb_keymap;
struct xkb_state;

namespace kel
{

/// Says which Qt::Key a key of the display's keyboard means, now.
class X11Keymap
{
public:
    /// Has the server announce changes on `connection`, which belongs to the caller. Without XKB in the server every
    /// key is 0.
    explicit X11Keymap(xcb_connection_t *connection);
    ~X11Keymap();

    /// Whether an event of this type on the connection says that the keymap has changed.
    bool announces(int eventType) const { return m_firstEvent != 0 && eventType == m_firstEvent; }

    /// Has the keymap read again before it is used next.
    void reload() { m_stale = true; }

    /// The Qt::Key for a key code of X with the modifiers and group of a core event, or 0 for a key without meaning.
    int qtKey(std::uint8_t keycode, std::uint16_t state);

private:
    struct Unref {
        void operator()(xkb_context *context) const;
        void operator()(xkb_keymap *keymap) const;
        void operator()(xkb_state *state) const;
    };
    Q_DISABLE_COPY(X11Keymap)

    bool selectEvents();
    void load();

    xcb_connection_t *m_connection;
    std::uint8_t m_firstEvent = 0; // 0: no XKB
    bool m_stale = true;           // the keymap is read when the next key needs it
    std::unique_ptr<xkb_context, Unref> m_context;
    std::unique_ptr<xkb_keymap, Unref> m_keymap;
    std::unique_ptr<xkb_state, Unref> m_state;
};

} // namespace kel
