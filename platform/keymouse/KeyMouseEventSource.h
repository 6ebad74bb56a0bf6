#pragma once

#include "keymouse/KelKeyMouseEvents.h"

#include <QString>

#include <memory>

namespace kel
{

/// Where an event source puts its events.
class KeyMouseEventSink
{
public:
    /// The kinds of event (bits of KelKeyMouseHook::Kind) that somebody wants now. Any thread.
    virtual int wantedKinds() const = 0;

    /// Hands an event over, in the order of happening and from one thread at a time. Positions are in the system's
    /// own (physical) pixels here; the sink converts them.
    virtual void deliver(KelKeyboardEvent event) = 0;
    virtual void deliver(KelMouseEvent event) = 0;
    virtual void deliver(KelWheelEvent event) = 0;

protected:
    ~KeyMouseEventSink() = default;
};

/// What an operating system (or a test) provides: the input of the whole desktop.
class KeyMouseEventSource
{
public:
    /// Stops. The sink hears nothing any more.
    virtual ~KeyMouseEventSource() = default;

    /// The sink's wantedKinds() may have changed: start, stop or go on accordingly. Returns when that is done, or
    /// after a limit; at once when called from within deliver(). Any thread.
    virtual void update() = 0;

    /// Why no input can be watched, in English; empty while it can, or nobody has tried. Any thread.
    virtual QString errorString() const { return {}; }
};

/// The source of the operating system that this library is built for.
std::unique_ptr<KeyMouseEventSource> createKeyMouseEventSource(KeyMouseEventSink &sink);

} // namespace kel
