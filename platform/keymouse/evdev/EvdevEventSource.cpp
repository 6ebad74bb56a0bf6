#include "keymouse/evdev/EvdevEventSource.h"

#include "keymouse/KelKeyMouseHook.h"
#include "keymouse/KeyMouseEventSource.h"
#include "keymouse/evdev/WaylandKeymap.h"

#include <xkbcommon/xkbcommon.h>

#include <linux/input.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace kel
{

namespace
{

constexpr int kWheelNotch = 120;
constexpr int kMaxNotches = 16; // of one event; no wheel turns faster
constexpr std::uint32_t kXkbOffset = 8;

enum KeyValue { Released = 0, Pressed = 1, Repeated = 2 };

/// The Qt::MouseButton of a mouse button, with the numbers that Qt assigns in Wayland sessions.
int qtButton(int code)
{
    switch (code) {
    case BTN_LEFT:
        return Qt::LeftButton;
    case BTN_RIGHT:
        return Qt::RightButton;
    case BTN_MIDDLE:
        return Qt::MiddleButton;
    default:
        return Qt::BackButton << (code - BTN_SIDE);
    }
}

bool isMouseButton(int code)
{
    return code >= BTN_LEFT && code <= BTN_TASK;
}

std::set<int> keysHeldNow(int descriptor)
{
    std::array<std::uint8_t, (KEY_CNT + 7) / 8> bits{};
    std::set<int> held;
    if (ioctl(descriptor, EVIOCGKEY(bits.size()), bits.data()) < 0)
        return held;
    for (int code = 0; code < KEY_CNT; ++code) {
        if ((bits[std::size_t(code / 8)] >> (code % 8)) & 1)
            held.insert(code);
    }
    return held;
}

struct Lock {
    int led;
    const char *name;
    int code;
};
constexpr std::array kLocks{Lock{LED_CAPSL, XKB_LED_NAME_CAPS, KEY_CAPSLOCK},
                            Lock{LED_NUML, XKB_LED_NAME_NUM, KEY_NUMLOCK}};

/// Brings the locks of a new state to what the keyboard shows.
void applyLocks(int descriptor, xkb_state *state)
{
    std::array<std::uint8_t, (LED_CNT + 7) / 8> leds{};
    ioctl(descriptor, EVIOCGLED(leds.size()), leds.data());
    for (const Lock &lock : kLocks) {
        const bool isOn = (leds[std::size_t(lock.led / 8)] >> (lock.led % 8)) & 1;
        if (isOn && !xkb_state_led_name_is_active(state, lock.name)) {
            const std::uint32_t keycode = kXkbOffset + std::uint32_t(lock.code);
            xkb_state_update_key(state, keycode, XKB_KEY_DOWN);
            xkb_state_update_key(state, keycode, XKB_KEY_UP);
        }
    }
}

} // namespace

EvdevEventSource::EvdevEventSource(std::unique_ptr<InputDevices> devices)
    : m_devices(std::move(devices))
    , m_context(xkb_context_new(XKB_CONTEXT_NO_FLAGS))
{
}

EvdevEventSource::~EvdevEventSource() = default;

bool EvdevEventSource::open()
{
    return m_context != nullptr;
}

bool EvdevEventSource::watch(int kinds)
{
    m_kinds = kinds;
    m_open.erase(
        std::remove_if(m_open.begin(), m_open.end(),
                       [kinds](const OpenDevice &one) { return one.device.opened != (one.device.offered & kinds); }),
        m_open.end());
    if (!(kinds & KelKeyMouseHook::Keyboard)) {
        m_keyboard.reset();
        m_keymap.reset();
    } else if (!m_keyboard) {
        m_keyboard = std::make_unique<XkbKeyboard>();
        m_keymap = std::make_unique<WaylandKeymap>();
        applyNewKeymap();
        // Until the session's keymap arrives, that of the system settings, as far as xkbcommon knows them
        if (!m_keyboard->state())
            m_keyboard->setKeymap(
                XkbKeymap(xkb_keymap_new_from_names(m_context.get(), nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS)));
    }
    openNewDevices();
    return !m_open.empty();
}

void EvdevEventSource::openNewDevices()
{
    QStringList known;
    for (const OpenDevice &one : m_open)
        known.append(one.device.name);
    for (InputDevice &device : m_devices->open(m_kinds, known)) {
        OpenDevice opened{std::move(device), {}, false};
        readHeldKeys(opened);
        m_open.push_back(std::move(opened));
    }
}

void EvdevEventSource::applyNewKeymap()
{
    const QByteArray text = m_keymap->takeKeymap();
    if (text.isEmpty())
        return;
    XkbKeymap keymap(xkb_keymap_new_from_string(m_context.get(), text.constData(), XKB_KEYMAP_FORMAT_TEXT_V1,
                                                XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap)
        return;
    m_keyboard->setKeymap(std::move(keymap));
    for (OpenDevice &one : m_open)
        readHeldKeys(one);
}

/// Modifiers and locks that were already on count, but are not reported.
void EvdevEventSource::readHeldKeys(OpenDevice &one)
{
    if (!(one.device.opened & KelKeyMouseHook::Keyboard) || !m_keyboard->state())
        return;
    applyLocks(one.device.descriptor.get(), m_keyboard->state());
    for (const int code : keysHeldNow(one.device.descriptor.get())) {
        one.heldKeys.insert(code);
        xkb_state_update_key(m_keyboard->state(), kXkbOffset + std::uint32_t(code), XKB_KEY_DOWN);
    }
}

bool EvdevEventSource::deliverUntil(int wakeDescriptor, KeyMouseEventSink &sink)
{
    for (;;) {
        std::vector<pollfd> waits{{wakeDescriptor, POLLIN, 0},
                                  {m_devices->changes(), POLLIN, 0},
                                  {m_keymap ? m_keymap->descriptor() : -1, POLLIN, 0}};
        const std::size_t first = waits.size();
        for (const OpenDevice &one : m_open)
            waits.push_back({one.device.descriptor.get(), POLLIN, 0});
        poll(waits.data(), waits.size(), -1);
        if (waits[0].revents)
            return true;
        if (waits[2].revents) {
            m_keymap->process();
            applyNewKeymap();
        }
        for (std::size_t i = m_open.size(); i-- > 0;) {
            if (waits[first + i].revents && !read(m_open[i], sink))
                m_open.erase(m_open.begin() + std::ptrdiff_t(i));
        }
        if (waits[1].revents) {
            m_devices->forgetChanges();
            openNewDevices();
        }
    }
}

/// False when the device is gone.
bool EvdevEventSource::read(OpenDevice &device, KeyMouseEventSink &sink)
{
    std::array<input_event, 64> events;
    const ssize_t size = ::read(device.device.descriptor.get(), events.data(), sizeof events);
    if (size <= 0) {
        if (size < 0 && (errno == EAGAIN || errno == EINTR))
            return true;
        releaseKeys(device, {}, sink);
        return false;
    }
    const std::size_t count = std::size_t(size) / sizeof(input_event);
    std::for_each(events.begin(), events.begin() + count,
                  [&](const input_event &event) { handle(device, event, sink); });
    return true;
}

void EvdevEventSource::handle(OpenDevice &device, const input_event &event, KeyMouseEventSink &sink)
{
    if (event.type == EV_SYN && event.code == SYN_DROPPED) {
        device.isDropping = true;
    } else if (device.isDropping) {
        // What follows up to the end of the report is incomplete.
        if (event.type == EV_SYN && event.code == SYN_REPORT) {
            device.isDropping = false;
            releaseKeys(device, keysHeldNow(device.device.descriptor.get()), sink);
        }
    } else if (event.type == EV_KEY) {
        key(device, event.code, event.value, sink);
    } else if (event.type == EV_REL && event.code == REL_WHEEL) {
        if (!(device.device.opened & KelKeyMouseHook::Mouse))
            return;
        const int notches = std::clamp(event.value, -kMaxNotches, kMaxNotches);
        for (int i = 0; i < std::abs(notches); ++i)
            sink.deliver(KelWheelEvent{notches > 0 ? kWheelNotch : -kWheelNotch, {}, false});
    }
}

void EvdevEventSource::key(OpenDevice &device, int code, int value, KeyMouseEventSink &sink)
{
    const bool isButton = isMouseButton(code);
    if (!(device.device.opened & (isButton ? KelKeyMouseHook::Mouse : KelKeyMouseHook::Keyboard)))
        return;
    if (value == Pressed)
        device.heldKeys.insert(code);
    else if (value == Released)
        device.heldKeys.erase(code);
    if (!isButton)
        type(kXkbOffset + std::uint32_t(code), value, sink);
    else if (value != Repeated)
        sink.deliver(KelMouseEvent{qtButton(code), {}, value == Pressed ? 1 : 0, false});
}

void EvdevEventSource::type(std::uint32_t keycode, int value, KeyMouseEventSink &sink)
{
    if (value == Repeated && !m_keyboard->repeats(keycode))
        return; // the kernel repeats modifiers, too
    // The name of a key is that before its own effect on the state.
    if (const int qtKey = m_keyboard->qtKey(keycode, value != Released))
        sink.deliver(KelKeyboardEvent{qtKey, value != Released ? 1 : 0});
    if (value != Repeated && m_keyboard->state())
        xkb_state_update_key(m_keyboard->state(), keycode, value == Pressed ? XKB_KEY_DOWN : XKB_KEY_UP);
}

/// For keys and buttons whose release was not, and will not be, received
void EvdevEventSource::releaseKeys(OpenDevice &device, const std::set<int> &stillHeld, KeyMouseEventSink &sink)
{
    const std::set<int> held = device.heldKeys;
    for (const int code : held) {
        if (stillHeld.count(code) == 0)
            key(device, code, Released, sink);
    }
}

} // namespace kel
