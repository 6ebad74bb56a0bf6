#include "XTestInput.h"

#include "keymouse/GlobalShortcut.h"
#include "support/TestTable.h"

#include <QSignalSpy>
#include <QtTest>

using namespace kel;

namespace
{

// Keycodes of the evdev keymap, which all current X servers use.
enum Code { Ctrl = 37, Shift = 50, Alt = 64, CapsLock = 66, NumLock = 77, LetterR = 27, F9 = 75 };

} // namespace

class GlobalShortcutTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        for (const int lock : qAsConst(m_locks))
            m_input.tap(lock);
        m_locks.clear();
    }

    void pressed_data()
    {
        const TestTable<QString, QVector<int>, QVector<int>, bool> row("keys", "locks", "typed", "matches");
        const QVector<int> none;
        row("letter", "Ctrl+Alt+R", none, QVector<int>{Ctrl, Alt, LetterR}, true);
        row("modifiers in other order", "Ctrl+Alt+R", none, QVector<int>{Alt, Ctrl, LetterR}, true);
        row("function key alone", "F9", none, QVector<int>{F9}, true);
        row("Caps Lock", "Ctrl+Alt+R", QVector<int>{CapsLock}, QVector<int>{Ctrl, Alt, LetterR}, true);
        row("Num Lock", "Ctrl+Alt+R", QVector<int>{NumLock}, QVector<int>{Ctrl, Alt, LetterR}, true);
        row("both locks", "F9", QVector<int>{CapsLock, NumLock}, QVector<int>{F9}, true);
        row("too few modifiers", "Ctrl+Alt+R", none, QVector<int>{Ctrl, LetterR}, false);
        row("too many modifiers", "Ctrl+Alt+R", none, QVector<int>{Ctrl, Alt, Shift, LetterR}, false);
    }

    void pressed()
    {
        QFETCH(QString, keys);
        QFETCH(QVector<int>, locks);
        QFETCH(QVector<int>, typed);
        QFETCH(bool, matches);
        GlobalShortcut shortcut;
        GlobalShortcut witness; // activated after all keys typed before it
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
        QCOMPARE(activated.size(), matches ? 1 : 0);

        QVERIFY(shortcut.setKeys(QKeySequence()));
        type(typed);
        type({Shift, F9});
        QTRY_COMPARE(witnessed.size(), 2);
        QCOMPARE(activated.size(), matches ? 1 : 0);
    }

    void heldKeyCountsOnce()
    {
        GlobalShortcut shortcut;
        QVERIFY(shortcut.setKeys(QKeySequence("F9")));
        QSignalSpy activated(&shortcut, &GlobalShortcut::activated);
        // The server generates auto-repeat only for real keyboards; to clients a second press looks the same.
        m_input.key(F9, true);
        m_input.key(F9, true);
        m_input.key(F9, false);
        type({F9});
        QTRY_COMPARE(activated.size(), 2);
    }

    void conflict()
    {
        // Another client has grabbed the combination.
        xcb_connection_t *const other = xcb_connect(nullptr, nullptr);
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(other)).data->root;
        const auto grab = xcb_grab_key_checked(other, 1, root, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1, LetterR,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        QVERIFY(!xcb_request_check(other, grab));

        GlobalShortcut shortcut;
        QVERIFY(!shortcut.setKeys(QKeySequence("Ctrl+Alt+R")));
        QVERIFY(shortcut.errorString().contains("Another program"));
        QVERIFY(shortcut.keys().isEmpty());
        QVERIFY2(shortcut.setKeys(QKeySequence("F9")), "another combination is available");
        QVERIFY2(!shortcut.setKeys(QKeySequence("F35")), "no such key");
        xcb_disconnect(other);
    }

    void keymapChanges()
    {
        constexpr int kSpareKey = 248; // without a keysym
        GlobalShortcut shortcut;
        QVERIFY(shortcut.setKeys(QKeySequence("F9")));
        QSignalSpy activated(&shortcut, &GlobalShortcut::activated);
        m_input.setKeysym(kSpareKey, 0xffc6); // F9
        // The change notification arrives asynchronously; presses before it do not match.
        QTRY_VERIFY((type({kSpareKey}), QCoreApplication::processEvents(), activated.size() > 0));
        m_input.setKeysym(kSpareKey, 0);
    }

private:
    void type(const QVector<int> &codes)
    {
        for (const int code : codes)
            m_input.key(code, true);
        for (auto code = codes.rbegin(); code != codes.rend(); ++code)
            m_input.key(*code, false);
    }

    XTestInput m_input;
    QVector<int> m_locks;
};

QTEST_MAIN(GlobalShortcutTest)
#include "tst_global_shortcut.moc"
