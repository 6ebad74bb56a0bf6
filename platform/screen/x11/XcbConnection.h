#pragma once

#include "x11/XcbPtr.h"

#include <xcb/xcb.h>

#include <chrono>

namespace kel
{

/// An own connection to the X server that $DISPLAY names. One thread at a time.
///
/// No call waits longer than kReplyTimeout for the server: a server that is stopped or grabbed by another client must
/// not block a recording. After a timeout the connection is stalled until the late reply arrives; check isStalled()
/// before sending requests.
class XcbConnection
{
public:
    static constexpr std::chrono::milliseconds kReplyTimeout{1000};

    XcbConnection();
    ~XcbConnection();
    XcbConnection(const XcbConnection &) = delete;
    XcbConnection &operator=(const XcbConnection &) = delete;

    operator xcb_connection_t *() const { return m_connection; }

    /// False when the connection failed, and permanently once the server is gone.
    bool isOpen() const { return !xcb_connection_has_error(m_connection); }
    bool isStalled();

    /// The screen that $DISPLAY names; null when not connected.
    const xcb_screen_t *screen() const { return m_screen; }

    XcbPtr<xcb_generic_event_t> nextEvent() { return XcbPtr<xcb_generic_event_t>(xcb_poll_for_event(m_connection)); }

    /// The reply to a request: `await<xcb_get_geometry_reply_t>(xcb_get_geometry(…))`. Null when the server rejected
    /// the request, did not respond in time or is gone.
    template <typename Reply, typename Cookie>
    XcbPtr<Reply> await(Cookie cookie)
    {
        return XcbPtr<Reply>(static_cast<Reply *>(awaitReply(cookie.sequence)));
    }

    /// True when the server has accepted a request without reply that was sent as "checked".
    bool check(xcb_void_cookie_t cookie);

private:
    void *awaitReply(unsigned sequence);

    xcb_connection_t *m_connection; // never null, even when connecting failed
    const xcb_screen_t *m_screen = nullptr;
    unsigned m_lateSequence = 0; // the request that a stalled connection waits for, otherwise 0
};

} // namespace kel
