#include "RecordingHook.h"

#include "keymouse/KeyMouseHub.h"
#include "keymouse/evdev/EvdevEventSource.h"
#include "keymouse/unix/KeyMouseThread.h"
#include "support/EnvironmentChange.h"
#include "support/TestTable.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QtTest>

#include <linux/input.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <map>
#include <mutex>

using namespace kel;

namespace
{

constexpr int kKeyboard = KelKeyMouseHook::Keyboard;
constexpr int kMouse = KelKeyMouseHook::Mouse;

using Event = std::array<int, 3>; // type, code, value

/// The devices that are plugged in: what a test writes, the source reads.
class Plugs
{
public:
    Plugs()
        : changes(eventfd(0, EFD_NONBLOCK))
    {
    }

    void plug(const QString &name, int offered)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_offered[name] = offered;
        eventfd_write(changes.get(), 1);
    }
    void unplug(const QString &name)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_offered.erase(name);
        m_written.erase(name);
    }
    /// One report of the device; an overflow is a part of the next one.
    void send(const QString &name, QVector<Event> events)
    {
        if (events.last() != Event{EV_SYN, SYN_DROPPED, 0})
            events.append({EV_SYN, SYN_REPORT, 0});
        QVector<input_event> report;
        for (const auto &[type, code, value] : events) {
            input_event event{};
            event.type = std::uint16_t(type);
            event.code = std::uint16_t(code);
            event.value = value;
            report.append(event);
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto written = m_written.find(name);
        if (written != m_written.end())
            ::send(written->second.get(), report.constData(), std::size_t(report.size()) * sizeof(input_event),
                   MSG_NOSIGNAL);
    }
    /// Whether somebody reads the device.
    bool isOpen(const QString &name)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const auto written = m_written.find(name);
        char byte;
        return written != m_written.end() && recv(written->second.get(), &byte, 1, MSG_DONTWAIT) < 0;
    }
    std::vector<InputDevice> open(int kinds, const QStringList &except)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::vector<InputDevice> devices;
        for (const auto &[name, offered] : m_offered) {
            int ends[2];
            if ((offered & kinds) == 0 || except.contains(name) ||
                socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends) != 0)
                continue;
            m_written[name] = OwnDescriptor(ends[0]);
            devices.push_back({name, offered, offered & kinds, OwnDescriptor(ends[1])});
        }
        return devices;
    }

    OwnDescriptor changes;

private:
    std::mutex m_mutex;
    std::map<QString, int> m_offered;
    std::map<QString, OwnDescriptor> m_written;
};

class PluggedDevices : public InputDevices
{
public:
    explicit PluggedDevices(Plugs &plugs)
        : m_plugs(plugs)
    {
    }
    std::vector<InputDevice> open(int kinds, const QStringList &except) override { return m_plugs.open(kinds, except); }
    int changes() const override { return m_plugs.changes.get(); }
    void forgetChanges() override
    {
        eventfd_t count;
        eventfd_read(m_plugs.changes.get(), &count);
    }
    QString errorString() const override { return "nothing is plugged in"; }

private:
    Plugs &m_plugs;
};

Event key(int code, int value)
{
    return {EV_KEY, code, value};
}

QString line(int key, int state)
{
    return QString("key %1 %2").arg(key, 0, 16).arg(state);
}

} // namespace

Q_DECLARE_METATYPE(Event)

/// Reading input devices, with a German keymap.
class EvdevTest : public QObject
{
    Q_OBJECT

    QByteArray m_compositor;
    std::unique_ptr<Plugs> m_plugs;
    std::unique_ptr<RecordingHook> m_hook;

    QString keyLine(int code, int value)
    {
        m_plugs->send("kbd", {key(code, value)});
        return m_hook->take(1).join(' ');
    }

private slots:
    void initTestCase()
    {
        m_compositor = qgetenv("WAYLAND_DISPLAY");
        qunsetenv("WAYLAND_DISPLAY");
        qputenv("XKB_DEFAULT_LAYOUT", "de");
    }
    void init()
    {
        m_plugs = std::make_unique<Plugs>();
        m_plugs->plug("kbd", kKeyboard);
        m_plugs->plug("mouse", kMouse | kKeyboard);
        KeyMouseHub &hub = KeyMouseHub::instance();
        hub.setSource(std::make_unique<KeyMouseThread>(
            hub, [this] { return std::make_unique<EvdevEventSource>(std::make_unique<PluggedDevices>(*m_plugs)); }));
        m_hook = std::make_unique<RecordingHook>();
    }
    void cleanup()
    {
        m_hook.reset();
        KeyMouseHub::instance().setSource(nullptr);
    }

    void keysOfTheLayout_data()
    {
        const TestTable<QVector<Event>, QStringList> row("events", "lines");
        const QString shift = line(Qt::Key_Shift, 1), unshift = line(Qt::Key_Shift, 0);
        row("letter at another place", {key(KEY_Y, 1), key(KEY_Y, 0)}, {line(Qt::Key_Z, 1), line(Qt::Key_Z, 0)});
        row("level", {key(KEY_LEFTSHIFT, 1), key(KEY_7, 1), key(KEY_LEFTSHIFT, 0), key(KEY_7, 0)},
            {shift, line(Qt::Key_Slash, 1), unshift, line(Qt::Key_Slash, 0)});
        row("repeats, but no modifier",
            {key(KEY_LEFTSHIFT, 1), key(KEY_LEFTSHIFT, 2), key(KEY_A, 1), key(KEY_A, 2), key(KEY_A, 0),
             key(KEY_LEFTSHIFT, 0)},
            {shift, line(Qt::Key_A, 1), line(Qt::Key_A, 1), line(Qt::Key_A, 0), unshift});
        row("Windows key", {key(KEY_LEFTMETA, 1), key(KEY_LEFTMETA, 0)},
            {line(Qt::Key_Meta, 1), line(Qt::Key_Meta, 0)});
        row("no key", {key(BTN_TOUCH, 1), key(BTN_TOUCH, 0), key(KEY_A, 1)}, {line(Qt::Key_A, 1)});
        // After an overflow nothing is held anymore, as far as the device can tell; what is left of the report is not
        // to be trusted.
        row("overflow", {key(KEY_LEFTSHIFT, 1), key(KEY_A, 1), {EV_SYN, SYN_DROPPED, 0}, key(KEY_B, 1), key(KEY_C, 1)},
            {shift, line(Qt::Key_A, 1), line(Qt::Key_A, 0), unshift, line(Qt::Key_C, 1)});
    }
    void keysOfTheLayout()
    {
        QFETCH(QVector<Event>, events);
        QFETCH(QStringList, lines);
        m_hook->setHookType(kKeyboard);
        for (const Event &event : events)
            m_plugs->send("kbd", {event});
        QCOMPARE(m_hook->take(lines.size()), lines);
    }

    void buttonsAndWheel()
    {
        m_hook->setHookType(kMouse);
        m_plugs->send("mouse", {{EV_REL, REL_X, 5}, key(BTN_LEFT, 1)});
        m_plugs->send("mouse", {key(BTN_LEFT, 0), key(BTN_SIDE, 1)});
        m_plugs->send("mouse", {{EV_REL, REL_WHEEL, 2}, {EV_REL, REL_HWHEEL, 1}, {EV_REL, REL_WHEEL, -1}});
        QCOMPARE(m_hook->take(6), (QStringList{"button 1 1 nowhere", "button 1 0 nowhere", "button 8 1 nowhere",
                                               "wheel 120 nowhere", "wheel 120 nowhere", "wheel -120 nowhere"}));
    }

    /// Keyboards are closed while no keys are wanted, and the keys of a mouse are ignored.
    void keysThatNobodyWants()
    {
        m_hook->setHookType(kMouse);
        QVERIFY(!m_plugs->isOpen("kbd"));
        m_plugs->send("mouse", {key(KEY_A, 1), key(BTN_LEFT, 1)});
        QCOMPARE(m_hook->take(1), QStringList{"button 1 1 nowhere"});
        m_hook->setHookType(kMouse | kKeyboard);
        QVERIFY(m_plugs->isOpen("kbd"));
        QCOMPARE(keyLine(KEY_LEFTSHIFT, 1), line(Qt::Key_Shift, 1));
        m_hook->setHookType(kMouse);
        QVERIFY(!m_plugs->isOpen("kbd"));
        m_plugs->send("mouse", {key(KEY_A, 1), key(BTN_LEFT, 0)});
        QCOMPARE(m_hook->take(1), QStringList{"button 1 0 nowhere"});
        // What was held when the keyboard was closed is forgotten.
        m_hook->setHookType(kMouse | kKeyboard);
        QCOMPARE(keyLine(KEY_7, 1), line(Qt::Key_7, 1));
        m_hook->setHookType(0);
        QTRY_VERIFY(!m_plugs->isOpen("mouse"));
    }

    void devicesComeAndGo()
    {
        m_hook->setHookType(kKeyboard);
        QCOMPARE(keyLine(KEY_A, 1), line(Qt::Key_A, 1));
        m_plugs->unplug("kbd");
        QCOMPARE(m_hook->take(1), QStringList{line(Qt::Key_A, 0)}); // otherwise it would be held forever
        m_hook->setHookType(kMouse | kKeyboard);
        m_plugs->send("mouse", {key(BTN_RIGHT, 1)});
        QCOMPARE(m_hook->take(1), QStringList{"button 2 1 nowhere"});
        m_plugs->unplug("mouse");
        QCOMPARE(m_hook->take(1), QStringList{"button 2 0 nowhere"});
        m_plugs->plug("kbd", kKeyboard);
        QTRY_VERIFY(m_plugs->isOpen("kbd"));
        QCOMPARE(keyLine(KEY_B, 1), line(Qt::Key_B, 1));
    }

    /// The session's keymap, an American one, replaces the default as soon as the session has a keyboard.
    void keymapOfTheSession()
    {
        const EnvironmentChange session("WAYLAND_DISPLAY", m_compositor);
        m_hook->setHookType(kKeyboard);
        QCOMPARE(keyLine(KEY_Y, 1), line(Qt::Key_Z, 1));
        const auto call = [](const QString &path, const QString &interface, const QString &method,
                             const QVariantList &arguments = {}) {
            const QString service = "org.gnome.Mutter.RemoteDesktop";
            QDBusMessage message = QDBusMessage::createMethodCall(service, path, service + interface, method);
            message.setArguments(arguments);
            return QDBusConnection::sessionBus().call(message);
        };
        const QString remote = call("/org/gnome/Mutter/RemoteDesktop", "", "CreateSession")
                                   .arguments()
                                   .value(0)
                                   .value<QDBusObjectPath>()
                                   .path();
        call(remote, ".Session", "Start");
        call(remote, ".Session", "NotifyKeyboardKeycode", {uint(KEY_LEFTSHIFT), true}); // plugs in a keyboard
        QCOMPARE(keyLine(KEY_Y, 0), line(Qt::Key_Z, 0));                                // as it was pressed
        QTRY_COMPARE((m_plugs->send("kbd", {key(KEY_Y, 1)}), m_plugs->send("kbd", {key(KEY_Y, 0)}), m_hook->take(2)),
                     (QStringList{line(Qt::Key_Y, 1), line(Qt::Key_Y, 0)}));
    }

    void nothingIsPluggedIn()
    {
        m_plugs->unplug("kbd");
        m_plugs->unplug("mouse");
        m_hook->setHookType(kKeyboard);
        QCOMPARE(KelKeyMouseHook::errorString(), QString("nothing is plugged in"));
    }
};

QTEST_GUILESS_MAIN(EvdevTest)
#include "tst_evdev.moc"
