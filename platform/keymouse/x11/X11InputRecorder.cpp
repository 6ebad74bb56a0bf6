#include "keymouse/x11/X11InputRecorder.h"

#include "x11/XcbPtr.h"

#include <xcb/record.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>
#include <xcb/xinput.h>

#include <poll.h>
#include <sys/socket.h>

#include <cstdlib>
#include <cstring>

namespace kel
{

namespace
{

constexpr int kStartTimeoutMs = 5000;

// Values of `category` in a reply with recorded data.
enum Category { FromServer = 0, StartOfData = 4, EndOfData = 5 };

constexpr std::size_t kEventSize = sizeof(xcb_raw_generic_event_t);
static_assert(sizeof(xcb_key_press_event_t) == 32 && sizeof(xcb_button_press_event_t) == 32,
              "must have the wire format");

} // namespace

void X11InputRecorder::Disconnect::operator()(xcb_connection_t *connection) const
{
    xcb_disconnect(connection);
}

X11InputRecorder::~X11InputRecorder() = default;

bool X11InputRecorder::fail(const char *message)
{
    m_error = QLatin1String(message);
    return false;
}

bool X11InputRecorder::open()
{
    m_control.reset(xcb_connect(nullptr, nullptr));
    m_data.reset(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(m_control.get()) || xcb_connection_has_error(m_data.get()))
        return fail("no X display can be reached");

    for (xcb_connection_t *connection : {m_control.get(), m_data.get()}) {
        const xcb_query_extension_reply_t *extension = xcb_get_extension_data(connection, &xcb_record_id);
        if (!extension || !extension->present)
            return fail("the X server has no RECORD extension");
    }
    const XcbPtr<xcb_record_query_version_reply_t> version(xcb_record_query_version_reply(
        m_control.get(), xcb_record_query_version(m_control.get(), XCB_RECORD_MAJOR_VERSION, XCB_RECORD_MINOR_VERSION),
        nullptr));
    if (!version)
        return fail("the X server does not answer");

    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_control.get())).data->root;
    m_context = xcb_generate_id(m_control.get());
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(
        m_control.get(), xcb_record_create_context_checked(m_control.get(), m_context, 0, 0, 0, nullptr, nullptr)));
    if (error || xcb_connection_has_error(m_control.get()))
        return fail("the X server refuses to record input");
    return enable();
}

bool X11InputRecorder::enable()
{
    m_enableSequence = xcb_record_enable_context(m_data.get(), m_context).sequence;
    xcb_flush(m_data.get());
    for (;;) {
        void *reply = nullptr;
        xcb_generic_error_t *error = nullptr;
        if (xcb_poll_for_reply(m_data.get(), m_enableSequence, &reply, &error)) {
            const XcbPtr<xcb_record_enable_context_reply_t> start(
                static_cast<xcb_record_enable_context_reply_t *>(reply));
            const XcbPtr<xcb_generic_error_t> refusal(error);
            if (start && start->category == StartOfData)
                return true;
            return fail("the X server does not start to record input");
        }
        pollfd data{dataDescriptor(), POLLIN, 0};
        if (poll(&data, 1, kStartTimeoutMs) == 0)
            return fail("the X server does not answer");
    }
}

void X11InputRecorder::selectRawEvents(bool keys, bool buttons)
{
    const xcb_query_extension_reply_t *extension = xcb_get_extension_data(m_control.get(), &xcb_input_id);
    if (!extension || !extension->present)
        return; // events may be delayed then, but are not lost
    const XcbPtr<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(m_control.get(), xcb_input_xi_query_version(m_control.get(), 2, 2), nullptr));
    struct {
        xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
        std::uint32_t events = 0;
    } mask;
    if (keys)
        mask.events |= XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
    if (buttons)
        mask.events |= XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE;
    const XcbPtr<xcb_generic_error_t> ignored(
        xcb_request_check(m_control.get(), xcb_input_xi_select_events_checked(m_control.get(), m_root, 1, &mask.head)));
}

bool X11InputRecorder::setRecorded(bool keys, bool buttons)
{
    selectRawEvents(keys, buttons);
    xcb_record_range_t range{};
    range.device_events.first = keys ? XCB_KEY_PRESS : XCB_BUTTON_PRESS;
    range.device_events.last = buttons ? XCB_BUTTON_RELEASE : XCB_KEY_RELEASE;
    const xcb_record_client_spec_t allClients = XCB_RECORD_CS_ALL_CLIENTS;

    // A second registration replaces the first without interrupting the recording.
    const xcb_void_cookie_t cookie =
        keys || buttons ? xcb_record_register_clients_checked(m_control.get(), m_context, 0, 1, 1, &allClients, &range)
                        : xcb_record_unregister_clients_checked(m_control.get(), m_context, 1, &allClients);
    const XcbPtr<xcb_generic_error_t> error(xcb_request_check(m_control.get(), cookie));
    if (xcb_connection_has_error(m_control.get()))
        return fail("the connection to the X server is lost");
    if (error)
        return fail("the X server refuses to record input");
    return true;
}

bool X11InputRecorder::read(std::vector<X11InputEvent> &events)
{
    void *next = nullptr;
    xcb_generic_error_t *nextError = nullptr;
    while (xcb_poll_for_reply(m_data.get(), m_enableSequence, &next, &nextError)) {
        const XcbPtr<xcb_record_enable_context_reply_t> reply(static_cast<xcb_record_enable_context_reply_t *>(next));
        const XcbPtr<xcb_generic_error_t> error(nextError);
        if (!reply || reply->category == EndOfData)
            return fail("the connection to the X server is lost");
        if (reply->category != FromServer)
            continue;
        const std::uint8_t *data = xcb_record_enable_context_data(reply.get());
        const int size = xcb_record_enable_context_data_length(reply.get());
        for (std::size_t at = 0; at + kEventSize <= std::size_t(size); at += kEventSize) {
            xcb_key_press_event_t event; // a button event has the same layout
            std::memcpy(&event, data + at, sizeof event);
            events.push_back({std::uint8_t(event.response_type & 0x7f), event.detail, event.state,
                              QPoint(event.root_x, event.root_y)});
        }
    }
    // MappingNotify is sent to all clients. Only queued events are read: reading the socket here could queue replies
    // that the caller's poll() does not see.
    while (xcb_generic_event_t *event = xcb_poll_for_queued_event(m_data.get()))
        std::free(event);
    if (xcb_connection_has_error(m_data.get()) || xcb_connection_has_error(m_control.get()))
        return fail("the connection to the X server is lost");
    return true;
}

int X11InputRecorder::dataDescriptor() const
{
    return xcb_get_file_descriptor(m_data.get());
}

void X11InputRecorder::interrupt()
{
    for (const Connection *connection : {&m_control, &m_data}) {
        if (*connection && !xcb_connection_has_error(connection->get()))
            shutdown(xcb_get_file_descriptor(connection->get()), SHUT_RDWR);
    }
}

} // namespace kel
