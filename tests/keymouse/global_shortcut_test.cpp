#include "XTestInput.h"

#include "keymouse/GlobalShortcut.h"
#include "support/TestTable.h"

#include <QSignalSpy>
#include <QtTest>

using namespace kel;

namespace
{

// Key codes of the keyboard that every X server here has.
enum Code { Ctrl = 37, Shift = 50, Alt = 64, CapsLock = 66, NumLock = 77, LetterR = 27, F9 = 75 };

} // namespace

class GlobalShortcutTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void pressed_data();
    void pressed();
    void heldKeyCountsOnce();
    void conflict();
    void otherKeyboard();

private:
    void type(const QVector<int> &codes);

    XTestInput m_input;
    QVector<int> m_locks;
};

void GlobalShortcutTest::type(const QVector<int> &codes)
{
    for (const int code : codes)
        m_input.key(code, true);
    for (auto code = codes.rbegin(); code != codes.rend(); ++code)
        m_input.key(*code, false);
}

void GlobalShortcutTest::cleanup()
{
    for (const int lock : qAsConst(m_locks))
        m_input.tap(lock);
    m_locks.clear();
}

void GlobalShortcutTest::pressed_data()
{
    const TestTable<QString, QVector<int>, QVector<int>, bool> row("keys", "locks", "typed", "isMeant");
    const QVector<int> none;
    row("letter", "Ctrl+Alt+R", none, QVector<int>{Ctrl, Alt, LetterR}, true);
    row("modifiers in another order", "Ctrl+Alt+R", none, QVector<int>{Alt, Ctrl, LetterR}, true);
    row("function key alone", "F9", none, QVector<int>{F9}, true);
    row("Caps Lock", "Ctrl+Alt+R", QVector<int>{CapsLock}, QVector<int>{Ctrl, Alt, LetterR}, true);
    row("Num Lock", "Ctrl+Alt+R", QVector<int>{NumLock}, QVector<int>{Ctrl, Alt, LetterR}, true);
    row("both locks", "F9", QVector<int>{CapsLock, NumLock}, QVector<int>{F9}, true);
    row("too few modifiers", "Ctrl+Alt+R", none, QVector<int>{Ctrl, LetterR}, false);
    row("too many modifiers", "Ctrl+Alt+R", none, QVector<int>{Ctrl, Alt, Shift, LetterR}, false);
}

void GlobalShortcutTest::pressed()
{
    QFETCH(QString, keys);
    QFETCH(QVector<int>, locks);
    QFETCH(QVector<int>, typed);
    QFETCH(bool, isMeant);
    GlobalShortcut shortcut;
    GlobalShortcut witness; // heard after whatever was typed before
    QVERIFY2(shortcut.setKeys(keys), qPrintable(shortcut.errorString()));
    QVERIFY(witness.setKeys(QKeySequence("Shift+F9")));
    QSignalSpy activated(&shortcut, &GlobalShortcut::activated);
    QSignalSpy witnessed(&witness, &GlobalShortcut::activated);
    m_locks = locks;
    for (const int lock : locks)
        m_input.tap(lock);
    type(typed);
    type({Shift, F9});
    QTRY_COMPARE(witnessed.size(), 1);
    QCOMPARE(activated.size(), isMeant ? 1 : 0);

    QVERIFY(shortcut.setKeys(QKeySequence()));
    type(typed);
    type({Shift, F9});
    QTRY_COMPARE(witnessed.size(), 2);
    QCOMPARE(activated.size(), isMeant ? 1 : 0);
}

void GlobalShortcutTest::heldKeyCountsOnce()
{
    GlobalShortcut shortcut;
    QVERIFY(shortcut.setKeys(QKeySequence("F9")));
    QSignalSpy activated(&shortcut, &GlobalShortcut::activated);
    // The server repeats a key of its own accord only for a real keyboard; to clients a press more looks the same.
    m_input.key(F9, true);
    m_input.key(F9, true);
    m_input.key(F9, false);
    type({F9});
    QTRY_COMPARE(activated.size(), 2);
}

void GlobalShortcutTest::conflict()
{
    // Another client has the combination already.
    xcb_connection_t *const other = xcb_connect(nullptr, nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(other)).data->root;
    const auto grab = xcb_grab_key_checked(other, 1, root, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1, LetterR,
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    QVERIFY(!xcb_request_check(other, grab));

    GlobalShortcut shortcut;
    QVERIFY(!shortcut.setKeys(QKeySequence("Ctrl+Alt+R")));
    QVERIFY(shortcut.errorString().contains("Another program"));
    QVERIFY(shortcut.keys().isEmpty());
    QVERIFY2(shortcut.setKeys(QKeySequence("F9")), "another one can be had");
    QVERIFY2(!shortcut.setKeys(QKeySequence("F35")), "no such key");
    xcb_disconnect(other);
}

void GlobalShortcutTest::otherKeyboard()
{
    constexpr int SpareKey = 248; // without meaning
    GlobalShortcut shortcut;
    QVERIFY(shortcut.setKeys(QKeySequence("F9")));
    QSignalSpy activated(&shortcut, &GlobalShortcut::activated);
    m_input.setMeaning(SpareKey, 0xffc6); // F9
    // The news of the keyboard takes its way; a press before it has arrived is not ours.
    QTRY_VERIFY((type({SpareKey}), QCoreApplication::processEvents(), activated.size() > 0));
    m_input.setMeaning(SpareKey, 0);
}

QTEST_MAIN(GlobalShortcutTest)
#include "global_shortcut_test.moc"
