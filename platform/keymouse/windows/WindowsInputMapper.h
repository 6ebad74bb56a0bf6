#pragma once

#include "keymouse/windows/WindowsKeymap.h"

namespace kel
{

struct WindowsInputEvent;
class KeyMouseEventSink;

/// Translates hook events into events of Qt. Belongs to one thread.
class WindowsInputMapper
{
public:
    explicit WindowsInputMapper(KeyMouseEventSink &sink);

    /// Translates the event and delivers it; events without a meaning in Qt are dropped.
    void deliver(const WindowsInputEvent &event);

private:
    void deliverKey(const WindowsInputEvent &event);
    void deliverWheel(const MSLLHOOKSTRUCT &mouse);

    KeyMouseEventSink &m_sink;
    WindowsKeymap m_keymap;
    int m_wheelDelta = 0; // accumulated since the last whole notch
};

} // namespace kel
