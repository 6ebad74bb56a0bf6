#include "RecordingHook.h"
#include "XTestInput.h"

#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QProcess>
#include <QWindow>
#include <QtTest>

namespace
{

// Keycodes of the evdev keymap, which all current X servers use.
enum Code {
    SpareKey = 8,
    EscapeKey = 9,
    Digit1 = 10,
    LeftControl = 37,
    LetterA = 38,
    LeftShift = 50,
    LeftAlt = 64,
    CapsLock = 66,
    NumLock = 77,
    RightControl = 105,
    RightAlt = 108,
    LeftWindows = 133,
    MetaOfShift = 205, // on no keyboard: Meta with Shift, no key without
    LastCode = 255
};

/// A hook reports the Windows key as Meta, and Alt as Alt even if Shift was held first; Qt says Super and Meta.
QString withNamesOfTheHook(QString line)
{
    line.replace(QString::number(int(Qt::Key_Meta), 16), QString::number(int(Qt::Key_Alt), 16));
    for (const int super : {Qt::Key_Super_L, Qt::Key_Super_R})
        line.replace(QString::number(super, 16), QString::number(int(Qt::Key_Meta), 16));
    return line;
}

/// Records the key events that Qt delivers, as the hook names them.
class KeyWindow : public QWindow
{
public:
    QStringList lines;

protected:
    void keyPressEvent(QKeyEvent *event) override { add(event, 1); }
    void keyReleaseEvent(QKeyEvent *event) override { add(event, 0); }

private:
    void add(const QKeyEvent *event, int state)
    {
        if (event->key() != 0)
            lines.append(withNamesOfTheHook(QString("key %1 %2").arg(event->key(), 0, 16).arg(state)));
    }
};

} // namespace

/// Compares the events of a hook with the key events of a focused Qt window.
class KeymouseKeysTest : public QObject
{
    Q_OBJECT

private:
    XTestInput m_input;
    KeyWindow m_window;
    RecordingHook m_hook;
    int m_marks = 0;

    static void run(const char *program, const QStringList &arguments)
    {
        QProcess process;
        process.start(program, arguments);
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitCode(), 0);
    }

    /// Waits until both have received all keys so far.
    void catchUp()
    {
        const QString mark = QString("key %1 0").arg(int(Qt::Key_Escape), 0, 16);
        m_input.tap(EscapeKey);
        ++m_marks;
        const QDeadlineTimer limit(10'000);
        while (m_window.lines.count(mark) < m_marks && !limit.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 100);
        QCOMPARE(m_window.lines.count(mark), m_marks);
        QTRY_COMPARE(m_hook.lines().count(mark), m_marks);
    }

    /// Returns the lines of the hook and of Qt.
    void finish(QStringList &hook, QStringList &qt)
    {
        catchUp();
        m_marks = 0;
        hook = m_hook.take();
        qt = std::exchange(m_window.lines, {});
    }

private slots:
    void initTestCase()
    {
        run("xset", {"r", "off"});
        m_window.resize(100, 100);
        m_window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&m_window));
        m_input.focus(xcb_window_t(m_window.winId()));
        QTRY_COMPARE(QGuiApplication::focusWindow(), &m_window);
        m_hook.setHookType(KelKeyMouseHook::Keyboard);
    }

    void cleanupTestCase() { run("setxkbmap", {"us"}); }

    void keysEqualThoseOfQt_data()
    {
        QTest::addColumn<QString>("layout");
        QTest::addColumn<QVector<int>>("held");
        for (const char *layout : {"us", "de", "fr", "ru"}) {
            const auto row = [&](const char *name, const QVector<int> &held) {
                QTest::addRow("%s %s", layout, name) << QString(layout) << held;
            };
            row("plain", {});
            row("shift", {LeftShift});
            row("control", {LeftControl});
            row("right alt", {RightAlt});
            row("shift, right alt", {LeftShift, RightAlt});
            row("control, shift", {RightControl, LeftShift});
        }
    }
    void keysEqualThoseOfQt()
    {
        QFETCH(QString, layout);
        QFETCH(QVector<int>, held);
        run("setxkbmap", {layout});
        for (int lock : {0, int(CapsLock), int(NumLock)}) {
            if (lock)
                m_input.tap(lock);
            for (int code : held)
                m_input.key(code, true);
            for (int code = Digit1; code <= LastCode; ++code) {
                if (!held.contains(code) && code != CapsLock && code != NumLock && code != MetaOfShift)
                    m_input.tap(code);
                if (code % 64 == 0) // faster than any typist: the server would drop events that exceed its buffer
                    catchUp();
            }
            for (int code : held)
                m_input.key(code, false);
            if (lock)
                m_input.tap(lock);
        }
        QStringList hook, qt;
        finish(hook, qt);
        QVERIFY2(hook.size() > 500, qPrintable(QString::number(hook.size())));
        for (int i = 0; i < qMin(hook.size(), qt.size()); ++i)
            QVERIFY2(hook[i] == qt[i],
                     qPrintable(QString("event %1: %2; Qt: %3")
                                    .arg(i)
                                    .arg(hook.mid(i - 3, 8).join(", "), qt.mid(i - 3, 8).join(", "))));
        QCOMPARE(hook.size(), qt.size());
    }

    /// Whatever other modifiers change while a key is held, its release has the name of its press.
    void namesOfModifiers()
    {
        run("setxkbmap", {"us"});
        m_hook.take();
        const auto lines = [this](const QVector<int> &codes) { // negative: released
            for (const int code : codes)
                m_input.key(qAbs(code), code > 0);
            return m_hook.take(codes.size());
        };
        const QString shift = "key 1000020 ", alt = "key 1000023 ", meta = "key 1000022 ";
        QCOMPARE(lines({LeftShift, LeftAlt, -LeftAlt, -LeftShift}),
                 (QStringList{shift + "1", alt + "1", alt + "0", shift + "0"}));
        QCOMPARE(lines({LeftAlt, LeftShift, -LeftAlt, -LeftShift}),
                 (QStringList{alt + "1", shift + "1", alt + "0", shift + "0"}));
        QCOMPARE(lines({LeftShift, LeftWindows, Digit1, -LeftShift, -Digit1, -LeftWindows}),
                 (QStringList{shift + "1", meta + "1", "key 21 1", shift + "0", "key 21 0", meta + "0"}));
        run("setxkbmap", {"us", "-option", "altwin:meta_win"});
        QCOMPARE(lines({LeftWindows, -LeftWindows}), (QStringList{meta + "1", meta + "0"}));
        run("setxkbmap", {"-option"});
        m_window.lines.clear();
    }

    /// Of two layouts, the one that the user has switched to.
    void secondLayout()
    {
        run("setxkbmap", {"us,ru", "-option", "grp:rctrl_toggle"});
        m_hook.take();
        for (const QString letter : {"424", "41"}) { // Cyrillic ef, Latin A
            m_input.tap(RightControl);
            m_input.tap(LetterA);
            const QString press = "key " + letter + " 1";
            QTRY_VERIFY2(m_hook.lines().contains(press), qPrintable(m_hook.lines().join("; ")));
            m_hook.take();
        }
        run("setxkbmap", {"us", "-option"});
        m_window.lines.clear();
    }

    /// Tools that type arbitrary text assign a keysym to a spare key and press it at once.
    void keysymChangedBeforePress()
    {
        run("setxkbmap", {"us"});
        m_hook.take();
        for (int key : {0xc4, 0x416, 0x2192, 0x39e, 0xc4}) {
            m_input.setKeysym(SpareKey, 0x01000000u | std::uint32_t(key)); // the keysym of a Unicode character
            m_input.tap(SpareKey);
            QCOMPARE(m_hook.take(2),
                     (QStringList{QString("key %1 1").arg(key, 0, 16), QString("key %1 0").arg(key, 0, 16)}));
        }
    }
};

int main(int argc, char **argv)
{
    qputenv("QT_IM_MODULE", "none"); // an input method would consume dead keys
    QGuiApplication app(argc, argv);
    KeymouseKeysTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_keymouse_keys.moc"
