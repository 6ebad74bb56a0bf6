#include "RecordingHook.h"
#include "XTestInput.h"

#include "keymouse/KeyMouseEventSource.h"
#include "support/EnvironmentChange.h"
#include "support/LogCapture.h"
#include "support/x11/XServer.h"

#include <QDir>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QProcess>
#include <QScreen>
#include <QWindow>
#include <QtTest>

#include <atomic>
#include <memory>

using namespace kel;

namespace
{

enum Code { LetterA = 38, LetterB = 56 };

constexpr int kScale = 2; // of the screen, set in main()

/// Counts the events that the server delivers.
class CountingSink final : public KeyMouseEventSink
{
public:
    std::atomic<int> wanted{0};
    std::atomic<int> keys{0};
    std::atomic<int> buttons{0};

    int wantedKinds() const override { return wanted; }
    void deliver(KelKeyboardEvent) override { ++keys; }
    void deliver(KelMouseEvent) override { ++buttons; }
    void deliver(KelWheelEvent) override {}
};

int threadsOfThisProcess()
{
    return QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

class ClickWindow : public QWindow
{
public:
    QVector<int> buttons;

protected:
    void mousePressEvent(QMouseEvent *event) override { buttons.append(event->button()); }
};

} // namespace

/// The X11 event source with XTEST input on a private X server with a scaled screen.
class KeymouseX11Test : public QObject
{
    Q_OBJECT

    std::unique_ptr<XTestInput> m_input;

private slots:
    void initTestCase()
    {
        QCOMPARE(QGuiApplication::primaryScreen()->devicePixelRatio(), double(kScale));
        m_input = std::make_unique<XTestInput>();
    }

    void pointerAndWheel()
    {
        RecordingHook hook;
        hook.setHookType(KelKeyMouseHook::Mouse);
        m_input->move(100, 60);
        m_input->click(1);
        m_input->warp(300, 200); // by a program, which generates no event
        m_input->click(3);
        m_input->button(2, true); // dragged
        m_input->move(310, 210);
        m_input->move(320, 220);
        m_input->button(2, false);
        m_input->click(4);
        m_input->click(5);
        m_input->click(6); // horizontal scrolling
        m_input->click(7);
        m_input->click(8);
        m_input->click(9);
        m_input->tap(LetterA);
        m_input->click(1);
        const QStringList expected{"button 1 1 at 50,30",   "button 1 0 at 50,30",    "button 2 1 at 150,100",
                                   "button 2 0 at 150,100", "button 4 1 at 150,100",  "button 4 0 at 160,110",
                                   "wheel 120 at 160,110",  "wheel -120 at 160,110",  "button 8 1 at 160,110",
                                   "button 8 0 at 160,110", "button 16 1 at 160,110", "button 16 0 at 160,110",
                                   "button 1 1 at 160,110", "button 1 0 at 160,110"};
        QCOMPARE(hook.take(expected.size()), expected);
    }

    void respectsSwappedButtons()
    {
        ClickWindow window;
        window.setGeometry(0, 0, 200, 200);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        RecordingHook hook;
        hook.setHookType(KelKeyMouseHook::ButtonPress);
        m_input->swapButtons();
        m_input->move(20, 20);
        for (int button : {1, 2, 3})
            m_input->click(button);
        const QStringList lines = hook.take(3);
        QTRY_COMPARE(window.buttons.size(), 3);
        m_input->swapButtons();
        QStringList qt;
        for (int button : qAsConst(window.buttons))
            qt.append(QString("button %1 1 at 10,10").arg(button));
        QCOMPARE(lines, qt);
        QCOMPARE(window.buttons.first(), int(Qt::RightButton));
    }

    void heldKeyRepeats()
    {
        QCOMPARE(QProcess::execute("xset", {"r", "rate", "50", "100"}), 0);
        RecordingHook hook;
        hook.setHookType(KelKeyMouseHook::Keyboard);
        m_input->key(LetterA, true);
        QTRY_VERIFY(hook.lines().size() >= 4);
        m_input->key(LetterA, false);
        QCOMPARE(QProcess::execute("xset", {"r", "off"}), 0);
        QTRY_VERIFY(hook.lines().endsWith("key 41 0"));
        QStringList lines = hook.take();
        lines.removeLast();
        QCOMPARE(lines.count("key 41 1"), lines.size()); // presses only
    }

    void seesKeysGrabbedByOtherProgram()
    {
        xcb_connection_t *other = xcb_connect(nullptr, nullptr);
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(other)).data->root;
        auto *grab = xcb_grab_keyboard_reply(
            other, xcb_grab_keyboard(other, true, root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
            nullptr);
        QVERIFY(grab && grab->status == XCB_GRAB_STATUS_SUCCESS);
        std::free(grab);
        RecordingHook hook;
        hook.setHookType(KelKeyMouseHook::Keyboard);
        m_input->tap(LetterA);
        QCOMPARE(hook.take(2), (QStringList{"key 41 1", "key 41 0"}));
        xcb_disconnect(other);
    }

    /// The server sends recorded events only along with other data, which may never come.
    void reportsKeysThatNoProgramReceivesAtOnce()
    {
        RecordingHook hook;
        hook.setHookType(KelKeyMouseHook::Keyboard);
        for (int i = 0; i < 20; ++i) {
            m_input->keyWithoutAnswer(LetterA, i % 2 == 0);
            QCOMPARE(hook.take(1), QStringList{i % 2 == 0 ? "key 41 1" : "key 41 0"});
        }
    }

    /// The server records only needed kinds, and a change of the kinds loses no event of the others.
    void recordsNeededKindsOnly()
    {
        CountingSink sink;
        const auto source = createKeyMouseEventSource(sink);
        const auto want = [&](int kinds) {
            sink.wanted = kinds;
            source->update();
        };
        want(KelKeyMouseHook::Keyboard | KelKeyMouseHook::Mouse);
        m_input->tap(LetterA);
        m_input->button(1, true);
        want(KelKeyMouseHook::Mouse);
        m_input->tap(LetterA);
        m_input->button(1, false);
        QTRY_COMPARE(sink.buttons.load(), 2);
        QCOMPARE(sink.keys.load(), 2);
        want(KelKeyMouseHook::Keyboard);
        m_input->click(1);
        m_input->tap(LetterA);
        QTRY_COMPARE(sink.keys.load(), 4);
        QCOMPARE(sink.buttons.load(), 2);
        want(0);
        m_input->tap(LetterA);
        want(KelKeyMouseHook::Mouse);
        m_input->click(1);
        QTRY_COMPARE(sink.buttons.load(), 4);
        QCOMPARE(sink.keys.load(), 4);
    }

    void threadExistsWhileHooksAreInstalled()
    {
        const int before = threadsOfThisProcess();
        for (int round = 0; round < 100; ++round) {
            RecordingHook mouse, keyboard;
            keyboard.setHookType(KelKeyMouseHook::Keyboard);
            mouse.setHookType(KelKeyMouseHook::Mouse);
            m_input->tap(LetterB);
            m_input->click(1);
            QCOMPARE(keyboard.take(2).size(), 2);
            QCOMPARE(mouse.take(2).size(), 2);
            QCOMPARE(threadsOfThisProcess(), before + 1);
        }
        QTRY_COMPARE(threadsOfThisProcess(), before);
    }

    void lastHookRemovedInItsCallback()
    {
        const int before = threadsOfThisProcess();
        RecordingHook hook;
        hook.onEvent = [&] { hook.setHookType(0); };
        for (int round = 0; round < 3; ++round) {
            hook.setHookType(KelKeyMouseHook::Keyboard);
            m_input->tap(LetterA);
            QCOMPARE(hook.take(1), QStringList{"key 41 1"});
            QTRY_COMPARE(threadsOfThisProcess(), before);
        }
    }

    void noServer()
    {
        // Not set, no such server, invalid.
        for (const QByteArray &display : {QByteArray(), QByteArray(":9999"), QByteArray("nonsense")}) {
            const EnvironmentChange change("DISPLAY", display);
            LogCapture log;
            {
                RecordingHook mouse, keyboard;
                mouse.setHookType(KelKeyMouseHook::Mouse);
                keyboard.setHookType(KelKeyMouseHook::Keyboard);
            }
            RecordingHook next;
            next.setHookType(KelKeyMouseHook::Mouse);
            // One warning each time the source starts, not one per hook.
            const QString text =
                "W [KelKeyMouseHook] keyboard and mouse cannot be monitored: no X display can be reached";
            QCOMPARE(log.take(), (QStringList{text, text}));
        }
    }

    void serverDies()
    {
        XServer server;
        QVERIFY(!server.display().isEmpty());
        const int threads = threadsOfThisProcess();
        LogCapture log;
        RecordingHook hook;
        {
            const EnvironmentChange change("DISPLAY", server.display());
            hook.setHookType(KelKeyMouseHook::Keyboard | KelKeyMouseHook::Mouse);
            XTestInput input;
            input.tap(LetterA);
            QCOMPARE(hook.take(2).size(), 2);
        }
        server.kill();
        QTRY_COMPARE(threadsOfThisProcess(), threads);
        hook.setHookType(0);
        QCOMPARE(
            log.take(),
            QStringList{
                "W [KelKeyMouseHook] keyboard and mouse cannot be monitored: the connection to the X server is lost"});

        hook.setHookType(KelKeyMouseHook::Keyboard); // on the running server
        m_input->tap(LetterA);
        QCOMPARE(hook.take(2).size(), 2);
    }
};

int main(int argc, char **argv)
{
    qputenv("QT_SCALE_FACTOR", QByteArray::number(kScale));
    QGuiApplication app(argc, argv);
    KeymouseX11Test test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_keymouse_x11.moc"
