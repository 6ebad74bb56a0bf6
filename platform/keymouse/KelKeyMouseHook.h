#pragma once

#include "keymouse/KelKeyMouseEvents.h"

#include <QString>
#include <QtGlobal>

namespace kel
{
class KeyMouseHub;
} // namespace kel

/// Monitors keyboard and mouse of the whole desktop, regardless of which program has the focus.
///
/// Derive from it, override the callbacks of interest and call setHookType(). All hooks of the process share one event
/// source, which runs while at least one hook is installed and requests only the kinds of events that some hook needs:
/// while no hook monitors the keyboard, no keystroke reaches this process.
///
/// Construct a hook on the GUI thread; all other functions may be called from any thread, callbacks included.
class KelKeyMouseHook
{
public:
    /// The bits of a hook type.
    enum Kind {
        NoKind = 0,
        Keyboard = 1,
        ButtonPress = 2,
        ButtonRelease = 4,
        Wheel = 8,
        Mouse = ButtonPress | ButtonRelease | Wheel
    };

    KelKeyMouseHook();

    /// Removes the hook. Callbacks must not run once the destructor of a derived class has started, so every derived
    /// class calls setHookType(0) in its own destructor.
    virtual ~KelKeyMouseHook();

    /// Installs the hook for the kinds of events in `type` (1 keyboard, 14 mouse), or removes it (0).
    ///
    /// Installed hooks report all events that occur after this call has returned. After removal no callback is running
    /// and none is called again; only when called from within a callback, that callback still completes. Do not hold a
    /// lock here that a callback acquires: the call would wait 5 seconds for the callback and then log an error.
    ///
    /// Where input cannot be monitored (no display, no RECORD extension, a lost connection, Wayland), one warning is
    /// logged and the hook reports nothing.
    void setHookType(int type);

    /// Why installed hooks receive no events, in English; empty when they do.
    static QString errorString();

    /// Whether events may be read from the input devices of the computer where nothing else shows them, as in Wayland
    /// sessions; initially false. Needs a user in the group "input". Takes effect when the next hook is installed while
    /// none is.
    static void setReadsInputDevices(bool isAllowed);
    static bool readsInputDevices();

protected:
    /// The callbacks run on the event source's thread, one at a time. They must not throw, and must return quickly:
    /// while one runs, events queue up in the system, which holds a few hundred. The return value requests that the
    /// event is withheld from other programs; it is ignored, because X11 does not support that.
    virtual bool OnKeyboardEvent(KelKeyboardEvent event);
    virtual bool OnMouseEvent(KelMouseEvent event);
    virtual bool OnMouseWheelEvent(KelWheelEvent event);

private:
    friend class kel::KeyMouseHub;
    Q_DISABLE_COPY(KelKeyMouseHook)
};
