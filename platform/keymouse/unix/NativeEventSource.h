#pragma once

#include <QString>

#include <memory>

namespace kel
{

class KeyMouseEventSink;

/// The input that one kind of desktop session offers. Belongs to the thread of a KeyMouseThread, except for
/// interrupt().
class NativeEventSource
{
public:
    virtual ~NativeEventSource() = default;

    /// Connects, without receiving anything yet. False, with errorString(), on failure.
    virtual bool open() = 0;

    /// Receives these kinds of events (bits of KelKeyMouseHook::Kind) from now on. False, with errorString(), on
    /// failure.
    virtual bool watch(int kinds) = 0;

    /// Delivers events until the descriptor is readable. False, with errorString(), when nothing can be received
    /// anymore.
    virtual bool deliverUntil(int wakeDescriptor, KeyMouseEventSink &sink) = 0;

    /// Makes every call that waits return, now and in future. Any thread, while the object exists.
    virtual void interrupt() {}

    /// Why the last call failed, in English.
    virtual QString errorString() const = 0;
};

} // namespace kel
