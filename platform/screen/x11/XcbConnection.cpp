#include "screen/x11/XcbConnection.h"

#include <poll.h>
#include <xcb/xcbext.h>

#include <cstdlib>

namespace kel
{

namespace
{

const xcb_screen_t *screenNumber(xcb_connection_t *connection, int number)
{
    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; it.rem > 0 && number > 0; --number)
        xcb_screen_next(&it);
    return it.rem > 0 ? it.data : nullptr;
}

} // namespace

XcbConnection::XcbConnection()
{
    int number = 0;
    m_connection = xcb_connect(nullptr, &number);
    if (isOpen())
        m_screen = screenNumber(m_connection, number);
}

XcbConnection::~XcbConnection()
{
    xcb_disconnect(m_connection);
}

bool XcbConnection::isStalled()
{
    if (m_lateSequence == 0)
        return false;
    void *reply = nullptr;
    xcb_generic_error_t *error = nullptr;
    if (xcb_poll_for_reply(m_connection, m_lateSequence, &reply, &error))
        m_lateSequence = 0;
    std::free(reply);
    std::free(error);
    return m_lateSequence != 0;
}

bool XcbConnection::check(xcb_void_cookie_t cookie)
{
    // A request without a reply has succeeded when a later request is answered and no error was received.
    if (!await<xcb_get_input_focus_reply_t>(xcb_get_input_focus(m_connection))) {
        xcb_discard_reply(m_connection, cookie.sequence);
        return false;
    }
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(m_connection, cookie));
    return !error;
}

void *XcbConnection::awaitReply(unsigned sequence)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + kReplyTimeout;
    xcb_flush(m_connection);
    for (;;) {
        void *reply = nullptr;
        xcb_generic_error_t *error = nullptr;
        if (xcb_poll_for_reply(m_connection, sequence, &reply, &error)) {
            std::free(error);
            return reply;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0) {
            m_lateSequence = sequence;
            return nullptr;
        }
        pollfd readable{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        poll(&readable, 1, int(left));
    }
}

} // namespace kel
