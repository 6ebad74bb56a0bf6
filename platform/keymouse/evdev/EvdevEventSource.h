#pragma once

#include "keymouse/evdev/InputDevices.h"
#include "keymouse/unix/NativeEventSource.h"
#include "keymouse/xkb/XkbKeyboard.h"

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

struct input_event;

namespace kel
{

class WaylandKeymap;

/// Input of Wayland sessions, which show programs no input but their own: reads the devices themselves. Keyboards are
/// open only while keys are wanted. Devices know nothing about the pointer: events have no position.
class EvdevEventSource final : public NativeEventSource
{
public:
    explicit EvdevEventSource(std::unique_ptr<InputDevices> devices);
    ~EvdevEventSource() override;

    bool open() override;
    bool watch(int kinds) override;
    bool deliverUntil(int wakeDescriptor, KeyMouseEventSink &sink) override;
    QString errorString() const override { return m_devices->errorString(); }

private:
    struct OpenDevice {
        InputDevice device;
        std::set<int> heldKeys;  // and buttons
        bool isDropping = false; // the kernel's buffer has overflowed
    };

    void openNewDevices();
    void applyNewKeymap();
    void readHeldKeys(OpenDevice &device);
    bool read(OpenDevice &device, KeyMouseEventSink &sink);
    void handle(OpenDevice &device, const input_event &event, KeyMouseEventSink &sink);
    void key(OpenDevice &device, int code, int value, KeyMouseEventSink &sink);
    void type(std::uint32_t keycode, int value, KeyMouseEventSink &sink);
    void releaseKeys(OpenDevice &device, const std::set<int> &stillHeld, KeyMouseEventSink &sink);

    const std::unique_ptr<InputDevices> m_devices;
    int m_kinds = 0;
    std::vector<OpenDevice> m_open;
    std::unique_ptr<WaylandKeymap> m_keymap; // while keys are wanted
    XkbContext m_context;
    std::unique_ptr<XkbKeyboard> m_keyboard; // while keys are wanted
};

} // namespace kel
