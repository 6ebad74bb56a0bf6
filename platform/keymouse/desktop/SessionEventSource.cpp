#include "keymouse/KelKeyMouseHook.h"
#include "keymouse/KeyMouseEventSource.h"
#include "keymouse/evdev/EvdevEventSource.h"
#include "keymouse/evdev/SystemInputDevices.h"
#include "keymouse/unix/KeyMouseThread.h"
#include "keymouse/x11/X11EventSource.h"
#include "x11/DisplayServer.h"

namespace kel
{

namespace
{

class RefusedEventSource final : public NativeEventSource
{
public:
    bool open() override { return false; }
    bool watch(int) override { return false; }
    bool deliverUntil(int, KeyMouseEventSink &) override { return false; }
    QString errorString() const override
    {
        return QStringLiteral("a Wayland session shows clicks and keys to no other program, and reading them from the "
                              "input devices has not been allowed");
    }
};

std::unique_ptr<NativeEventSource> sourceOfSession()
{
    const DisplayServer server = displayServer();
    if (server != DisplayServer::Wayland && server != DisplayServer::XWayland)
        return std::make_unique<X11EventSource>();
    if (!KelKeyMouseHook::readsInputDevices())
        return std::make_unique<RefusedEventSource>();
    return std::make_unique<EvdevEventSource>(std::make_unique<SystemInputDevices>());
}

} // namespace

std::unique_ptr<KeyMouseEventSource> createKeyMouseEventSource(KeyMouseEventSink &sink)
{
    return std::make_unique<KeyMouseThread>(sink, sourceOfSession);
}

} // namespace kel
