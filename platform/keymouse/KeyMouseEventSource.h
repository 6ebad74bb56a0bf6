#pragma once

#include "keymouse/KelKeyMouseEvents.h"

#include <QString>

#include <memory>

namespace kel
{

/// The receiver of an event source.
class KeyMouseEventSink
{
public:
    /// The kinds of events (bits of KelKeyMouseHook::Kind) that are currently needed. Any thread.
    virtual int wantedKinds() const = 0;

    /// Delivers an event: in chronological order, from one thread at a time. Positions are in the system's physical
    /// pixels; the sink converts them.
    virtual void deliver(KelKeyboardEvent event) = 0;
    virtual void deliver(KelMouseEvent event) = 0;
    virtual void deliver(KelWheelEvent event) = 0;

protected:
    ~KeyMouseEventSink() = default;
};

/// The input of the whole desktop, provided by the operating system or by a test.
class KeyMouseEventSource
{
public:
    /// Stops the source; no event is delivered afterwards.
    virtual ~KeyMouseEventSource() = default;

    /// Called when wantedKinds() of the sink may have changed; starts, stops or adapts the source. Returns when that is
    /// done or after a timeout; immediately when called from within deliver(). Any thread.
    virtual void update() = 0;

    /// Why input cannot be monitored, in English; empty when it can, or when nothing was requested yet. Any thread.
    virtual QString errorString() const { return {}; }
};

/// The source of this operating system.
std::unique_ptr<KeyMouseEventSource> createKeyMouseEventSource(KeyMouseEventSink &sink);

} // namespace kel
