#include "keymouse/windows/WindowsInputMapper.h"

#include "keymouse/KeyMouseEventSource.h"
#include "keymouse/windows/InputQueue.h"

#include <Qt>

namespace kel
{

namespace
{

struct ButtonMessage {
    int button = 0; ///< a Qt::MouseButton value; 0 for none
    bool isPressed = false;
};

ButtonMessage buttonOf(UINT message, DWORD mouseData)
{
    const int extended = HIWORD(mouseData) == XBUTTON1 ? Qt::BackButton : Qt::ForwardButton;
    switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
        return {Qt::LeftButton, message == WM_LBUTTONDOWN};
    case WM_RBUTTONDOWN:
    case WM_RBUTTONUP:
        return {Qt::RightButton, message == WM_RBUTTONDOWN};
    case WM_MBUTTONDOWN:
    case WM_MBUTTONUP:
        return {Qt::MiddleButton, message == WM_MBUTTONDOWN};
    case WM_XBUTTONDOWN:
    case WM_XBUTTONUP:
        return {extended, message == WM_XBUTTONDOWN};
    default:
        return {};
    }
}

} // namespace

WindowsInputMapper::WindowsInputMapper(KeyMouseEventSink &sink)
    : m_sink(sink)
{
}

void WindowsInputMapper::deliver(const WindowsInputEvent &event)
{
    if (event.isKey) {
        deliverKey(event);
    } else if (event.message == WM_MOUSEWHEEL) {
        deliverWheel(event.mouse);
    } else if (const ButtonMessage message = buttonOf(event.message, event.mouse.mouseData); message.button != 0) {
        m_sink.deliver(KelMouseEvent{message.button, {event.mouse.pt.x, event.mouse.pt.y}, message.isPressed ? 1 : 0});
    }
}

void WindowsInputMapper::deliverKey(const WindowsInputEvent &event)
{
    const bool isPressed = event.message == WM_KEYDOWN || event.message == WM_SYSKEYDOWN;
    if (isPressed) {
        for (const int key : m_keymap.releaseAllBut(event.heldModifiers))
            m_sink.deliver(KelKeyboardEvent{key, 0});
    }
    if (const int key = m_keymap.qtKey(event.key, isPressed, event.layout))
        m_sink.deliver(KelKeyboardEvent{key, isPressed ? 1 : 0});
}

/// A high-resolution wheel or a touchpad reports fractions of a notch.
void WindowsInputMapper::deliverWheel(const MSLLHOOKSTRUCT &mouse)
{
    const int delta = short(HIWORD(mouse.mouseData));
    if ((delta > 0) != (m_wheelDelta > 0))
        m_wheelDelta = 0;
    m_wheelDelta += delta;
    const int notches = m_wheelDelta / WHEEL_DELTA;
    m_wheelDelta %= WHEEL_DELTA;
    if (notches != 0)
        m_sink.deliver(KelWheelEvent{notches * WHEEL_DELTA, {mouse.pt.x, mouse.pt.y}});
}

} // namespace kel
