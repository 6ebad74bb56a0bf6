#pragma once

#include "keymouse/windows/WindowsKeymap.h"

namespace kel
{

struct WindowsInputEvent;
class KeyMouseEventSink;

/// Says what the hooks were told in terms of Qt. Belongs to one thread.
class WindowsInputMapper
{
public:
    explicit WindowsInputMapper(KeyMouseEventSink &sink);

    /// Hands the event over; events without meaning are dropped.
    void deliver(const WindowsInputEvent &event);

private:
    void deliverKey(const WindowsInputEvent &event);
    void deliverWheel(const MSLLHOOKSTRUCT &mouse);

    KeyMouseEventSink &m_sink;
    WindowsKeymap m_keymap;
    int m_turned = 0; // of a fine wheel, since its last whole notch
};

} // namespace kel
