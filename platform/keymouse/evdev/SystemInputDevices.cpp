#include "keymouse/evdev/SystemInputDevices.h"

#include "keymouse/KelKeyMouseHook.h"

#include <QDir>
#include <QFile>

#include <linux/input.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace kel
{

namespace
{

constexpr char kDirectory[] = "/dev/input";

/// A set of event codes, as the kernel passes it.
template <int Count>
class CodeSet
{
public:
    bool contains(int code) const { return (m_words[word(code)] >> (code % kWordBits)) & 1; }
    void add(int code) { m_words[word(code)] |= 1ul << (code % kWordBits); }
    void addRange(int first, int last)
    {
        for (int code = first; code <= last; ++code)
            add(code);
    }
    unsigned long *data() { return m_words.data(); }
    std::size_t size() const { return sizeof m_words; }

private:
    static constexpr int kWordBits = 8 * sizeof(unsigned long); // the kernel accepts whole words only
    static std::size_t word(int code) { return std::size_t(code / kWordBits); }

    std::array<unsigned long, (Count + kWordBits - 1) / kWordBits> m_words{};
};

using KeySet = CodeSet<KEY_CNT>;
using AxisSet = CodeSet<REL_CNT>;

int offeredKinds(int descriptor)
{
    KeySet keys;
    AxisSet axes;
    ioctl(descriptor, EVIOCGBIT(EV_KEY, keys.size()), keys.data());
    ioctl(descriptor, EVIOCGBIT(EV_REL, axes.size()), axes.data());
    const bool hasButtons = keys.contains(BTN_LEFT);
    int kinds = 0;
    if (hasButtons || axes.contains(REL_WHEEL))
        kinds |= KelKeyMouseHook::Mouse;
    for (int code = KEY_ESC; code < BTN_MISC; ++code) {
        if (keys.contains(code))
            kinds |= KelKeyMouseHook::Keyboard; // power buttons and the extra keys of mice, too
    }
    return kinds;
}

/// Has the kernel keep everything else from this process: above all keys while only clicks are recorded (EV_MSC has
/// their scan codes), and the motion of the pointer, which would wake it a thousand times a second.
bool limitTo(int descriptor, int kinds)
{
    KeySet keys;
    AxisSet axes;
    CodeSet<ABS_CNT> none;
    if (kinds & KelKeyMouseHook::Keyboard) {
        keys.addRange(KEY_ESC, BTN_MISC - 1);
        keys.addRange(KEY_OK, KEY_MAX);
    }
    if (kinds & KelKeyMouseHook::Mouse) {
        keys.addRange(BTN_LEFT, BTN_TASK);
        axes.add(REL_WHEEL);
    }
    const auto mask = [descriptor](std::uint32_t type, auto &codes) {
        const input_mask request{type, std::uint32_t(codes.size()), std::uint64_t(std::uintptr_t(codes.data()))};
        return ioctl(descriptor, EVIOCSMASK, &request) == 0;
    };
    return mask(EV_KEY, keys) && mask(EV_REL, axes) && mask(EV_ABS, none) && mask(EV_MSC, none);
}

} // namespace

OwnDescriptor::~OwnDescriptor()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

SystemInputDevices::SystemInputDevices()
    : m_changes(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    inotify_add_watch(m_changes.get(), kDirectory, IN_CREATE | IN_ATTRIB); // a new device gets its permissions later
}

std::vector<InputDevice> SystemInputDevices::open(int kinds, const QStringList &except)
{
    std::vector<InputDevice> devices;
    bool isDenied = false;
    const QDir directory{QLatin1String(kDirectory)};
    for (const QString &name : directory.entryList({QStringLiteral("event*")}, QDir::System)) {
        if (except.contains(name))
            continue;
        InputDevice device;
        device.name = name;
        device.descriptor = OwnDescriptor(
            ::open(QFile::encodeName(directory.filePath(name)).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        if (device.descriptor.get() < 0) {
            isDenied = isDenied || errno == EACCES || errno == EPERM;
            continue;
        }
        device.offered = offeredKinds(device.descriptor.get());
        device.opened = device.offered & kinds;
        if (device.opened != 0 && limitTo(device.descriptor.get(), device.opened))
            devices.push_back(std::move(device));
    }
    if (!devices.empty())
        m_error.clear();
    else if (isDenied)
        m_error = QStringLiteral("the input devices can only be read by members of the group \"input\". Add yourself "
                                 "with \"sudo usermod -aG input $USER\", then log out and in");
    else
        m_error = QStringLiteral("there are no keyboards and mice in ") + QLatin1String(kDirectory);
    return devices;
}

void SystemInputDevices::forgetChanges()
{
    std::array<char, 4096> buffer;
    while (read(m_changes.get(), buffer.data(), buffer.size()) > 0) {
    }
}

} // namespace kel
