#pragma once

#include "keymouse/KelKeyMouseEvents.h"

#include <QString>
#include <QtGlobal>

namespace kel
{
class KeyMouseHub;
} // namespace kel

/// Watches keyboard and mouse of the whole desktop, whichever program has the focus.
///
/// Derive from it, override the callbacks of interest and call setHookType(). All hooks of the process are fed by one
/// event source, which runs while at least one hook is installed and asks the system only for what some hook wants:
/// while no hook watches the keyboard, no key that is typed reaches this process.
///
/// Construct a hook on the GUI thread; the other functions may be called from any thread, callbacks included.
class KelKeyMouseHook
{
public:
    /// Bits of a hook type.
    enum Kind {
        NoKind = 0,
        Keyboard = 1,
        ButtonPress = 2,
        ButtonRelease = 4,
        Wheel = 8,
        Mouse = ButtonPress | ButtonRelease | Wheel
    };

    KelKeyMouseHook();

    /// Removes the hook. The callbacks of a derived class must not run once its destructor has begun, so every
    /// derived class calls setHookType(0) in its own destructor.
    virtual ~KelKeyMouseHook();

    /// Installs the hook for the kinds of event in `type` (1 keyboard, 14 mouse), or removes it (0).
    ///
    /// After installation, events that happen from the return of this call on are reported. After removal no callback
    /// runs any more, one that was running has returned; only when called from within a callback, that callback
    /// itself goes on to its end. Do not hold a lock here that a callback takes: the call would wait for the callback
    /// in vain, for 5 seconds, and then say so in the log.
    ///
    /// Where input cannot be watched (no display, no RECORD extension, a lost connection) one warning is logged and
    /// the hook stays silent.
    void setHookType(int type);

    /// Why the hooks that are installed hear nothing, in English; empty when they do.
    static QString errorString();

protected:
    /// The callbacks run on the event source's thread, one at a time. They shall not throw, and return soon: while one
    /// runs, events wait in the system, which has room for a few hundred. The result says that the event should be kept
    /// from other programs, which X11 cannot do: it is ignored there.
    virtual bool OnKeyboardEvent(KelKeyboardEvent event);
    virtual bool OnMouseEvent(KelMouseEvent event);
    virtual bool OnMouseWheelEvent(KelWheelEvent event);

private:
    friend class kel::KeyMouseHub;
    Q_DISABLE_COPY(KelKeyMouseHook)
};
