#include "RecordingHook.h"

#include "keymouse/GlobalShortcutGrabber.h"
#include "keymouse/windows/WindowsKeymap.h"
#include "support/TestTable.h"

#include <QSignalSpy>
#include <QtTest>

#include <algorithm>

#include <windows.h>

using namespace kel;

namespace
{

KBDLLHOOKSTRUCT key(DWORD virtualKey, DWORD scanCode = 0, DWORD flags = 0)
{
    KBDLLHOOKSTRUCT event{};
    event.vkCode = virtualKey;
    event.scanCode = scanCode ? scanCode : MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC);
    event.flags = flags;
    return event;
}

void type(WORD virtualKey, DWORD flags = 0, WORD character = 0)
{
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = virtualKey;
    input.ki.wScan = character ? character : WORD(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = flags;
    SendInput(1, &input, sizeof input);
}

void mouse(DWORD flags, int data = 0)
{
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    input.mi.mouseData = DWORD(data);
    SendInput(1, &input, sizeof input);
}

} // namespace

/// What goes through Windows' own input, as a program that presses keys for somebody sends it.
class KeymouseWindowsTest : public QObject
{
    Q_OBJECT

private slots:
    void keys_data();
    void keys();
    void reportsKeys();
    void reportsMouse();
    void followsTheWantedKinds();
    void hearsAgain();
    void hotKeys_data();
    void hotKeys();
};

void KeymouseWindowsTest::keys_data()
{
    QTest::addColumn<QVector<int>>("held");
    QTest::addColumn<int>("virtualKey");
    QTest::addColumn<int>("scanCode");
    QTest::addColumn<int>("flags");
    QTest::addColumn<int>("expected");
    const QVector<int> none;
    const QVector<int> shift{VK_LSHIFT};
    QTest::newRow("letter") << none << int('A') << 0 << 0 << int(Qt::Key_A);
    QTest::newRow("letter with Shift") << shift << int('A') << 0 << 0 << int(Qt::Key_A);
    QTest::newRow("letter of a shortcut") << QVector<int>{VK_LCONTROL} << int('C') << 0 << 0 << int(Qt::Key_C);
    QTest::newRow("digit") << none << int('1') << 0 << 0 << int(Qt::Key_1);
    QTest::newRow("digit with Shift") << shift << int('1') << 0 << 0 << int(Qt::Key_Exclam);
    QTest::newRow("Tab") << none << VK_TAB << 0 << 0 << int(Qt::Key_Tab);
    QTest::newRow("Tab with Shift") << shift << VK_TAB << 0 << 0 << int(Qt::Key_Backtab);
    QTest::newRow("Return") << none << VK_RETURN << 0 << 0 << int(Qt::Key_Return);
    QTest::newRow("Enter") << none << VK_RETURN << 0 << int(LLKHF_EXTENDED) << int(Qt::Key_Enter);
    QTest::newRow("F12") << none << VK_F12 << 0 << 0 << int(Qt::Key_F12);
    QTest::newRow("right Ctrl") << none << VK_RCONTROL << 0 << 0 << int(Qt::Key_Control);
    QTest::newRow("Windows") << none << VK_LWIN << 0 << 0 << int(Qt::Key_Meta);
    QTest::newRow("key pad") << none << VK_MULTIPLY << 0 << 0 << int(Qt::Key_Asterisk);
    QTest::newRow("invented Ctrl") << none << VK_LCONTROL << 0x21d << 0 << 0;
    QTest::newRow("typed character") << none << VK_PACKET << 0x3b1 << 0 << 0x391; // small and capital alpha
    QTest::newRow("no key") << none << 0x1ff << 1 << 0 << 0;
}

void KeymouseWindowsTest::keys()
{
    QFETCH(QVector<int>, held);
    QFETCH(int, virtualKey);
    QFETCH(int, scanCode);
    QFETCH(int, flags);
    QFETCH(int, expected);

    HKL layout = GetKeyboardLayout(0);
    WindowsKeymap keymap;
    for (const int one : held)
        keymap.qtKey(key(DWORD(one)), true, layout);
    const KBDLLHOOKSTRUCT event = key(DWORD(virtualKey), DWORD(scanCode), DWORD(flags));
    QCOMPARE(keymap.qtKey(event, true, layout), expected);
    for (const int one : held) // whoever lets go of Shift first
        keymap.qtKey(key(DWORD(one)), false, layout);
    QCOMPARE(keymap.qtKey(event, false, layout), expected);

    // The right Alt key is AltGr behind an invented Ctrl, and Alt otherwise.
    for (const int meant : {int(Qt::Key_AltGr), int(Qt::Key_Alt)}) {
        if (meant == Qt::Key_AltGr)
            keymap.qtKey(key(VK_LCONTROL, 0x21d), true, layout);
        QCOMPARE(keymap.qtKey(key(VK_RMENU), true, layout), meant);
        QCOMPARE(keymap.qtKey(key(VK_RMENU), false, layout), meant);
    }
}

void KeymouseWindowsTest::reportsKeys()
{
    RecordingHook hook;
    hook.setHookType(KelKeyMouseHook::Keyboard);
    type(VK_SHIFT);
    type('K');
    type('K', KEYEVENTF_KEYUP);
    type(VK_SHIFT, KEYEVENTF_KEYUP);
    type(0, KEYEVENTF_UNICODE, 0x20ac);
    mouse(MOUSEEVENTF_LEFTDOWN); // nobody asked for it
    mouse(MOUSEEVENTF_LEFTUP);
    type(VK_F5);
    type(VK_F5, KEYEVENTF_KEYUP);
    const QStringList expected{"key 1000020 1", "key 4b 1",      "key 4b 0",     "key 1000020 0",
                               "key 20ac 1",    "key 1000034 1", "key 1000034 0"};
    QCOMPARE(hook.take(expected.size()), expected);
}

void KeymouseWindowsTest::reportsMouse()
{
    RecordingHook hook;
    hook.setHookType(KelKeyMouseHook::Mouse);
    SetCursorPos(120, 80);
    type('X');
    type('X', KEYEVENTF_KEYUP);
    mouse(MOUSEEVENTF_RIGHTDOWN);
    mouse(MOUSEEVENTF_RIGHTUP);
    mouse(MOUSEEVENTF_XDOWN, XBUTTON2);
    mouse(MOUSEEVENTF_XUP, XBUTTON2);
    mouse(MOUSEEVENTF_WHEEL, -WHEEL_DELTA);
    mouse(MOUSEEVENTF_WHEEL, 50); // a fine wheel: not a notch yet
    mouse(MOUSEEVENTF_WHEEL, 80);
    mouse(MOUSEEVENTF_WHEEL, 2 * WHEEL_DELTA);
    const QStringList expected{"button 2 1 at 120,80",  "button 2 0 at 120,80", "button 16 1 at 120,80",
                               "button 16 0 at 120,80", "wheel -120 at 120,80", "wheel 120 at 120,80",
                               "wheel 240 at 120,80"};
    QCOMPARE(hook.take(expected.size()), expected);
}

void KeymouseWindowsTest::followsTheWantedKinds()
{
    RecordingHook hook;
    for (const int kinds : {int(KelKeyMouseHook::Keyboard), int(KelKeyMouseHook::Mouse), 15, 0, 15}) {
        hook.setHookType(kinds);
        hook.take();
        type(VK_F5);
        mouse(MOUSEEVENTF_WHEEL, WHEEL_DELTA);
        type(VK_F5, KEYEVENTF_KEYUP);
        const int expected = (kinds & KelKeyMouseHook::Keyboard ? 2 : 0) + (kinds & KelKeyMouseHook::Wheel ? 1 : 0);
        QCOMPARE(hook.take(expected).size(), expected);
    }
}

/// A hook that hears nothing although there is input, as one that Windows has dropped, is installed anew. Here another
/// one lies in front of it that passes nothing on, while the mouse's goes on to hear.
void KeymouseWindowsTest::hearsAgain()
{
    RecordingHook hook;
    hook.setHookType(15);
    const auto hearsKeys = [&] {
        type(VK_F5);
        type(VK_F5, KEYEVENTF_KEYUP);
        mouse(MOUSEEVENTF_WHEEL, WHEEL_DELTA);
        return !hook.take(1).filter("key").isEmpty();
    };
    QTRY_VERIFY(hearsKeys());
    static int withheld = 0;
    const auto withhold = [](int, WPARAM, LPARAM) -> LRESULT { return ++withheld, 0; };
    const HHOOK inFront = SetWindowsHookExW(WH_KEYBOARD_LL, withhold, GetModuleHandleW(nullptr), 0);
    QVERIFY(inFront);
    hook.take();
    QTRY_VERIFY_WITH_TIMEOUT(hearsKeys() && withheld > 0, 30000);
    UnhookWindowsHookEx(inFront);
}

void KeymouseWindowsTest::hotKeys_data()
{
    const TestTable<QString, QVector<int>, bool> row("keys", "typed", "isMeant");
    row("letter", "Ctrl+Alt+R", QVector<int>{VK_CONTROL, VK_MENU, 'R'}, true);
    row("function key alone", "F9", QVector<int>{VK_F9}, true);
    row("digit with Shift", "Ctrl+Shift+5", QVector<int>{VK_CONTROL, VK_SHIFT, '5'}, true);
    row("fewer modifiers", "Ctrl+Alt+R", QVector<int>{VK_CONTROL, 'R'}, false);
    row("more modifiers", "Ctrl+Alt+R", QVector<int>{VK_CONTROL, VK_MENU, VK_SHIFT, 'R'}, false);
}

void KeymouseWindowsTest::hotKeys()
{
    QFETCH(QString, keys);
    QFETCH(QVector<int>, typed);
    QFETCH(bool, isMeant);
    const auto press = [](const QVector<int> &codes) {
        for (const int code : codes)
            type(WORD(code));
        for (auto code = codes.rbegin(); code != codes.rend(); ++code)
            type(WORD(*code), KEYEVENTF_KEYUP);
    };
    const int combination = QKeySequence(keys)[0], other = QKeySequence("Ctrl+Alt+F11")[0];
    const QVector<int> otherTyped{VK_CONTROL, VK_MENU, VK_F11};
    const auto grabber = GlobalShortcutGrabber::create(), rival = GlobalShortcutGrabber::create();
    QSignalSpy pressed(grabber.get(), &GlobalShortcutGrabber::pressed);
    QCOMPARE(grabber->grab(combination), QString());
    QCOMPARE(grabber->grab(other), QString());
    QVERIFY(!rival->grab(combination).isEmpty());
    const auto counts = [&](int key) {
        return int(std::count_if(pressed.begin(), pressed.end(), [key](const auto &one) { return one[0] == key; }));
    };
    press(typed);
    press(otherTyped); // comes after whatever the first ones did
    QTRY_COMPARE(counts(other), 1);
    QCOMPARE(counts(combination), int(isMeant));

    grabber->release(combination);
    QCOMPARE(rival->grab(combination), QString());
    rival->release(combination);
    press(typed);
    press(otherTyped);
    QTRY_COMPARE(counts(other), 2);
    QCOMPARE(counts(combination), int(isMeant));
}

QTEST_MAIN(KeymouseWindowsTest)
#include "keymouse_windows_test.moc"
