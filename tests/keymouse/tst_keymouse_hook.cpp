#include "RecordingHook.h"

#include "keymouse/KeyMouseHub.h"
#include "support/TestTable.h"

#include <QtTest>

#include <atomic>
#include <future>
#include <memory>
#include <mutex>

using namespace kel;

namespace
{

/// Records the requested kinds; the test delivers the events.
class ScriptedSource : public KeyMouseEventSource
{
public:
    /// Several threads may install hooks at once.
    void update() override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        kinds.append(KeyMouseHub::instance().wantedKinds());
    }

    QVector<int> kinds;

private:
    std::mutex m_mutex;
};

void sendKey(int key, int state = 1)
{
    KeyMouseHub::instance().deliver(KelKeyboardEvent{key, state});
}

/// One event of every kind.
void sendAll()
{
    sendKey(Qt::Key_A);
    KeyMouseHub::instance().deliver(KelMouseEvent{1, QPoint(3, 4), 1});
    KeyMouseHub::instance().deliver(KelMouseEvent{1, QPoint(5, 6), 0});
    KeyMouseHub::instance().deliver(KelWheelEvent{-120, QPoint(7, 8)});
}

} // namespace

class KeymouseHookTest : public QObject
{
    Q_OBJECT

    ScriptedSource *m_source = nullptr;

private slots:
    void init()
    {
        auto source = std::make_unique<ScriptedSource>();
        m_source = source.get();
        KeyMouseHub::instance().setSource(std::move(source));
    }
    void cleanup() { KeyMouseHub::instance().setSource(nullptr); }

    void hooksReceiveRequestedKinds_data()
    {
        const TestTable<int, QStringList> row("type", "lines");
        const QString key = "key 41 1", press = "button 1 1 at 3,4", release = "button 1 0 at 5,6",
                      wheel = "wheel -120 at 7,8";
        row("none", 0, {});
        row("keyboard", 1, {key});
        row("mouse", 14, {press, release, wheel});
        row("both", 15, {key, press, release, wheel});
        row("wheel", 8, {wheel});
        row("unknown bits", 0x7fffff00, {});
    }
    void hooksReceiveRequestedKinds()
    {
        QFETCH(int, type);
        QFETCH(QStringList, lines);
        RecordingHook hook;
        hook.setHookType(type);
        sendAll();
        QCOMPARE(hook.take(), lines);
        hook.setHookType(0);
        sendAll();
        QCOMPARE(hook.take(), QStringList());
    }

    /// Without a keyboard hook, no keystroke must reach this process.
    void sourceIsAskedForNeededKindsOnly()
    {
        {
            RecordingHook mouse, keyboard;
            mouse.setHookType(14);
            mouse.setHookType(14); // no change
            keyboard.setHookType(1);
            keyboard.setHookType(0);
            keyboard.setHookType(1);
            mouse.setHookType(0);
        }
        QCOMPARE(m_source->kinds, (QVector<int>{14, 15, 14, 15, 1, 0}));
    }

    void hookRemovedInCallback()
    {
        RecordingHook first, second, third;
        for (RecordingHook *hook : {&first, &second, &third})
            hook->setHookType(1);
        first.onEvent = [&] { first.setHookType(0); };
        second.onEvent = [&] { third.setHookType(0); };
        sendKey(Qt::Key_A);
        QCOMPARE(first.take().size(), 1); // a callback that removes its own hook completes
        QCOMPARE(third.take().size(), 0); // removed by another callback before its turn
        sendKey(Qt::Key_B);
        QCOMPARE(first.take().size(), 0);
        QCOMPARE(second.take().size(), 2);
    }

    void hookInstalledInCallback()
    {
        RecordingHook first, second;
        first.onEvent = [&] { second.setHookType(1); };
        first.setHookType(1);
        sendKey(Qt::Key_A);
        sendKey(Qt::Key_B);
        QCOMPARE(second.take(), QStringList{"key 42 1"});
    }

    void hookDeletedInItsCallback()
    {
        struct SelfDeletingHook : KelKeyMouseHook {
            ~SelfDeletingHook() override { setHookType(0); }
            bool OnKeyboardEvent(KelKeyboardEvent) override
            {
                delete this;
                return false;
            }
        };
        (new SelfDeletingHook)->setHookType(1);
        sendKey(Qt::Key_A);
        QCOMPARE(KeyMouseHub::instance().wantedKinds(), 0);
        sendKey(Qt::Key_B);
    }

    void removalWaitsForRunningCallback()
    {
        std::promise<void> entered, mayReturn;
        std::atomic<bool> returned{false};
        RecordingHook hook;
        hook.onEvent = [&] {
            entered.set_value();
            mayReturn.get_future().wait();
            returned = true;
        };
        hook.setHookType(1);
        auto delivery = std::async(std::launch::async, [] { sendKey(Qt::Key_A); });
        entered.get_future().wait();
        auto removal = std::async(std::launch::async, [&] {
            hook.setHookType(0);
            return returned.load();
        });
        // The removal has started when the kinds no longer include the keyboard.
        QTRY_COMPARE(KeyMouseHub::instance().wantedKinds(), 0);
        mayReturn.set_value();
        QVERIFY(removal.get());
        delivery.get();
    }

    void threadsInstallAndRemoveConcurrently()
    {
        std::atomic<bool> stop{false};
        auto delivery = std::async(std::launch::async, [&] {
            while (!stop)
                sendKey(Qt::Key_A);
        });
        std::vector<std::future<void>> threads;
        for (int i = 0; i < 3; ++i) {
            threads.push_back(std::async(std::launch::async, [] {
                for (int round = 0; round < 300; ++round) {
                    auto hook = std::make_unique<RecordingHook>();
                    hook->setHookType(1);
                    hook->setHookType(15);
                }
            }));
        }
        for (auto &thread : threads)
            thread.get();
        stop = true;
        delivery.get();
        QCOMPARE(KeyMouseHub::instance().wantedKinds(), 0);
    }

    void convertsPositions()
    {
        // A screen of 1920x1080 pixels with ratio 1, one of 3840x2160 with ratio 2 on its right, and one with 1.5
        // below.
        const std::vector<ScreenGeometry> screens{
            {QRect(0, 0, 1920, 1080), 1.0}, {QRect(1920, 0, 1920, 1080), 2.0}, {QRect(0, 2000, 800, 600), 1.5}};
        const auto logical = [&](int x, int y) { return screenAt(screens, {x, y})->toLogical({x, y}); };
        QCOMPARE(logical(100, 50), QPoint(100, 50));
        QCOMPARE(logical(1919, 1079), QPoint(1919, 1079)); // the last pixel of a screen
        QCOMPARE(logical(1920, 0), QPoint(1920, 0));
        QCOMPARE(logical(1920 + 1000, 600), QPoint(1920 + 500, 300));
        QCOMPARE(logical(1920 + 3838, 2158), QPoint(1920 + 1919, 1079));
        QCOMPARE(logical(150, 2000 + 300), QPoint(100, 2000 + 200));
        QVERIFY(!screenAt(screens, {-10, 20}));
    }
};

QTEST_GUILESS_MAIN(KeymouseHookTest)
#include "tst_keymouse_hook.moc"
