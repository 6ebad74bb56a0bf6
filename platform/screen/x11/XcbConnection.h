#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdlib>
#include <memory>

namespace kel
{

struct XcbFree {
    void operator()(void *pointer) const { std::free(pointer); }
};

/// A reply, an event or an error that XCB hands out.
template <typename T>
using XcbPtr = std::unique_ptr<T, XcbFree>;

/// A connection of its own to the X server that $DISPLAY names. One thread at a time.
///
/// No call waits longer than answerLimit for the server: one that is stopped, or grabbed by another client, must not
/// hold up a recording. Such a connection is stalled until the late answer has come; ask isStalled() before sending.
class XcbConnection
{
public:
    static constexpr std::chrono::milliseconds answerLimit{1000};

    XcbConnection();
    ~XcbConnection();
    XcbConnection(const XcbConnection &) = delete;
    XcbConnection &operator=(const XcbConnection &) = delete;

    operator xcb_connection_t *() const { return m_connection; }

    /// False when there was no server to connect to, and for good once it is gone.
    bool isOpen() const { return !xcb_connection_has_error(m_connection); }
    bool isStalled();

    /// The screen that $DISPLAY names; null when not connected.
    const xcb_screen_t *screen() const { return m_screen; }

    XcbPtr<xcb_generic_event_t> nextEvent() { return XcbPtr<xcb_generic_event_t>(xcb_poll_for_event(m_connection)); }

    /// The reply to a request: `await<xcb_get_geometry_reply_t>(xcb_get_geometry(…))`.
    /// Null when the server refused it, did not answer in time or is gone.
    template <typename Reply, typename Cookie>
    XcbPtr<Reply> await(Cookie cookie)
    {
        return XcbPtr<Reply>(static_cast<Reply *>(awaitReply(cookie.sequence)));
    }

    /// True when the server has accepted a request that has no reply and was sent as "checked".
    bool check(xcb_void_cookie_t cookie);

private:
    void *awaitReply(unsigned sequence);

    xcb_connection_t *m_connection; // never null, even when connecting failed
    const xcb_screen_t *m_screen = nullptr;
    unsigned m_lateSequence = 0; // the unanswered request of a stalled connection, else 0
};

} // namespace kel
