#pragma once

#include "geometry/ScreenLayout.h"
#include "keymouse/KeyMouseEventSource.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class KelKeyMouseHook;

namespace kel
{

/// Distributes the events of the source to all hooks that monitor their kind.
///
/// No callback runs under a lock. The source may call wantedKinds() while it holds its own lock, so the hub never calls
/// the source while it holds its lock.
class KeyMouseHub final : public KeyMouseEventSink
{
public:
    static KeyMouseHub &instance();

    /// Installs, changes or (kinds 0) removes a hook; see KelKeyMouseHook::setHookType(). Any thread.
    void setHookKinds(KelKeyMouseHook *hook, int kinds);

    /// Converts positions by the scale of the screens. Needs a QGuiApplication; without one positions stay unconverted.
    void watchScreens() { m_screens.watch(); }

    /// Replaces the operating system's source; null restores it. Only while no hook is installed.
    void setSource(std::unique_ptr<KeyMouseEventSource> source);

    QString errorString() const { return m_source->errorString(); }

    int wantedKinds() const override;
    void deliver(KelKeyboardEvent event) override;
    void deliver(KelMouseEvent event) override;
    void deliver(KelWheelEvent event) override;

private:
    struct Registration {
        KelKeyMouseHook *hook;
        int kinds;
    };

    KeyMouseHub();
    ~KeyMouseHub();
    Q_DISABLE_COPY(KeyMouseHub)

    template <typename Callback>
    void dispatch(int kind, Callback callback);
    std::vector<Registration>::iterator find(const KelKeyMouseHook *hook);

    ScreenLayout m_screens;

    mutable std::mutex m_mutex; // guards the members below
    std::condition_variable m_callbackReturned;
    std::vector<Registration> m_hooks;
    KelKeyMouseHook *m_running = nullptr; // the hook whose callback is running on the thread m_dispatcher
    std::thread::id m_dispatcher;

    std::unique_ptr<KeyMouseEventSource> m_source; // last: its thread uses the members above until it is destroyed
};

} // namespace kel
