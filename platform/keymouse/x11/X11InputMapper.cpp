#include "keymouse/x11/X11InputMapper.h"

#include "keymouse/KeyMouseEventSource.h"
#include "keymouse/x11/X11InputRecorder.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace kel
{

namespace
{

constexpr int kWheelNotch = 120;

enum XButton { XLeft = 1, XMiddle, XRight, XWheelUp, XWheelDown, XWheelLeft, XWheelRight, XBack };

/// The Qt::MouseButton of an X button other than the wheel, with the numbers that Qt assigns; 0 when Qt has none.
int qtButton(int button)
{
    switch (button) {
    case XLeft:
        return Qt::LeftButton;
    case XMiddle:
        return Qt::MiddleButton;
    case XRight:
        return Qt::RightButton;
    default:
        return button >= XBack && button < XBack + 24 ? Qt::BackButton << (button - XBack) : 0;
    }
}

} // namespace

X11InputMapper::X11InputMapper(xcb_connection_t *connection)
    : m_connection(connection)
    , m_keymap(connection)
{
    m_buttons.load(m_connection);
}

void X11InputMapper::update()
{
    processNotifications();
    do
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    while (processNotifications());
}

bool X11InputMapper::processNotifications()
{
    bool any = false;
    bool buttonsChanged = false;
    while (xcb_generic_event_t *event = xcb_poll_for_event(m_connection)) {
        any = true;
        const int type = event->response_type & 0x7f;
        if (m_keymap.isKeymapEvent(type))
            m_keymap.invalidate();
        else if (type == XCB_MAPPING_NOTIFY)
            buttonsChanged |= reinterpret_cast<xcb_mapping_notify_event_t *>(event)->request == XCB_MAPPING_POINTER;
        std::free(event);
    }
    if (buttonsChanged)
        m_buttons.load(m_connection);
    return any;
}

void X11InputMapper::deliver(const X11InputEvent &event, KeyMouseEventSink &sink)
{
    const int pressed = event.type == XCB_KEY_PRESS || event.type == XCB_BUTTON_PRESS ? 1 : 0;
    if (event.type == XCB_KEY_PRESS || event.type == XCB_KEY_RELEASE) {
        if (const int key = m_keymap.qtKey(event.detail, pressed == 1, event.state))
            sink.deliver(KelKeyboardEvent{key, pressed});
        return;
    }
    const int button = m_buttons.logicalButton(event.detail);
    if (button == XWheelUp || button == XWheelDown) {
        if (pressed)
            sink.deliver(KelWheelEvent{button == XWheelUp ? kWheelNotch : -kWheelNotch, event.position});
    } else if (const int qtValue = qtButton(button)) {
        sink.deliver(KelMouseEvent{qtValue, event.position, pressed});
    }
}

} // namespace kel
