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

/// Passes the events of the one source to all hooks that want them.
///
/// No callback runs under a lock. The source may ask for wantedKinds() under a lock of its own, so the source is never
/// called under the hub's.
class KeyMouseHub final : public KeyMouseEventSink
{
public:
    static KeyMouseHub &instance();

    /// Installs, changes or (kinds 0) removes a hook; see KelKeyMouseHook::setHookType(). Any thread.
    void setHookKinds(KelKeyMouseHook *hook, int kinds);

    /// Makes positions follow the scale of the screens. Needs an application; until then scale is taken as 1.
    void watchScreens() { m_screens.watch(); }

    /// Replaces the operating system's source; null puts it back. Only while no hook is installed.
    void setSource(std::unique_ptr<KeyMouseEventSource> source);

    QString errorString() const { return m_source->errorString(); }

    int wantedKinds() const override;
    void deliver(KelKeyboardEvent event) override;
    void deliver(KelMouseEvent event) override;
    void deliver(KelWheelEvent event) override;

private:
    struct Installed {
        KelKeyMouseHook *hook;
        int kinds;
    };

    KeyMouseHub();
    ~KeyMouseHub();
    Q_DISABLE_COPY(KeyMouseHub)

    template <typename Callback>
    void dispatch(int kind, Callback callback);
    std::vector<Installed>::iterator find(const KelKeyMouseHook *hook);

    ScreenLayout m_screens;

    mutable std::mutex m_mutex; // guards what follows
    std::condition_variable m_callbackReturned;
    std::vector<Installed> m_hooks;
    KelKeyMouseHook *m_running = nullptr; // the hook whose callback runs now, on the thread m_dispatcher
    std::thread::id m_dispatcher;

    std::unique_ptr<KeyMouseEventSource> m_source; // last: its thread uses all of the above until it is gone
};

} // namespace kel
