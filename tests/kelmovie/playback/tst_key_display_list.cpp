#include "kelmovie/support/KeyScript.h"
#include "kelmovie/support/NaiveKeyDisplay.h"

#include "playback/keys/KeyDisplayListBuilder.h"
#include "playback/keys/KeyNames.h"
#include "support/TestTable.h"

#include <QRandomGenerator>
#include <QtTest>

using namespace kel;

namespace
{

/// The boxes at `frame`, oldest first: "type:text" or "type:text*count", the current one after a bar.
QString boxesAt(const KeyDisplayList &list, int frame)
{
    const int index = list.indexAt(frame);
    if (index < 0)
        return "none";
    const KeyDisplayEntry &entry = list.entries[size_t(index)];
    QStringList boxes;
    for (int i = entry.historyBegin; i < entry.historyEnd; ++i)
        boxes += boxText(list.past[size_t(i)]);
    boxes += "| " + boxText(entry.current);
    return boxes.join(' ').trimmed();
}

} // namespace

class KeyDisplayListTest : public QObject
{
    Q_OBJECT

private slots:
    void showsBoxes_data();
    void showsBoxes();
    void matchesNaiveImplementation();
    void everyKeyHasPrintableText();
};

void KeyDisplayListTest::showsBoxes_data()
{
    const TestTable<QString, int, QString> row("script", "frame", "boxes");

    const QString abc = "10:+A 12:+B 14:+C";
    row("before the first", abc, 9, "none");
    row("typing", abc, 11, "| 1:A");
    row("continuous typing", abc, 14, "| 1:ABC");
    row("kept for two seconds", abc, 74, "| 1:ABC");
    row("expired", abc, 75, "none");
    row("a release extends it", abc + " 20:-C", 80, "| 1:ABC");
    row("five in a box", "1:+A 2:+B 3:+C 4:+D 5:+E 6:+F", 6, "1:ABCDE | 1:F");
    row("modifier alone", "1:+Control", 1, "| 4:Ctrl");
    row("modifier released", "1:+Control 5:-Control", 5, "none");
    row("modifier stays removed", "1:+Control 5:-Control", 6, "none");
    row("combination", "1:+Control 3:+C", 3, "| 8:Ctrl+C");
    row("combination stays", "1:+Control 3:+C 5:-C 6:-Control", 66, "| 8:Ctrl+C");
    row("combination repeated", "1:+Control 3:+C 5:-C 6:+C", 6, "| 8:Ctrl+C*2");
    row("next combination", "1:+Control 3:+C 5:-C 6:-Control 8:+Control 9:+V", 9, "8:Ctrl+C | 8:Ctrl+V");
    row("all modifiers", "1:+Meta 2:+Alt 3:+Control 4:+Shift 5:+A", 5, "| 8:Shift+Ctrl+Alt+Meta+A");
    row("typing, then a shortcut", "1:+A 2:+B 4:+Control 6:+C", 6, "1:AB | 8:Ctrl+C");
    row("repeated", "1:+Return 2:-Return 3:+Return", 3, "| 2:Return*2");
    row("different keys", "1:+Return 3:+F5 5:+Left", 5, "2:Return 2:F5 | 2:Left");
    row("history is limited", "1:+F1 2:+F2 3:+F3 4:+F4 5:+F5", 5, "2:F3 2:F4 | 2:F5");
    row("history expires first", "1:+F1 30:+F2", 62, "| 2:F2");
    row("one key per frame", "1:+A 1:+B 1:+C", 2, "| 1:A");
    row("modifiers of the same frame count", "1:+A 1:+Control 3:+C", 3, "1:A | 8:Ctrl+C");
    row("capture off", "1:+A 3:off 5:+B", 5, "| 1:A");
    row("capture on again", "1:+A 3:off 5:+B 7:on 9:+C", 9, "| 1:AC");
    row("record before the start", "-7:+Control 3:+C", 3, "| 8:Ctrl+C");
    row("record after the end", "3:+C 2000000000:+D", 4, "| 1:C");

    // As the hook on X11 names them.
    row("Windows key", "1:+Super_L 3:+E", 3, "| 8:Meta+E");
    row("right Windows key alone", "1:+Super_R", 1, "| 4:Meta");
    row("AltGr types", "1:+AltGr 3:+At 4:-At 5:-AltGr", 5, "| 2:@");
    row("Shift and Tab", "1:+Shift 3:+Backtab", 3, "| 8:Shift+Tab");
    row("Alt pressed after Shift", "1:+Shift 2:+Meta 3:+T", 3, "| 8:Shift+Alt+T");
    row("Alt released before Shift", "1:+Shift 2:+Alt 3:-Meta 4:-Shift 5:+F1", 5, "| 2:F1");
    row("Alt released after Shift", "1:+Shift 2:+Meta 3:-Shift 4:-Alt 5:+F1", 5, "| 2:F1");
}

void KeyDisplayListTest::showsBoxes()
{
    QFETCH(QString, script);
    QFETCH(int, frame);
    QFETCH(QString, boxes);

    const KeyLog recording{30, {}, keyScript(script)};
    const KeyDisplayList list = KeyDisplayListBuilder::build(recording, 200, {2, 3, 5});
    QCOMPARE(boxesAt(list, frame), boxes);
}

void KeyDisplayListTest::matchesNaiveImplementation()
{
    QRandomGenerator random(20);
    const std::vector<int> keys{Qt::Key_A,     Qt::Key_B,       Qt::Key_7,   Qt::Key_Return, Qt::Key_Left,
                                Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Shift,  0};
    for (int round = 0; round < 1500; ++round) {
        const int totalFrames = random.bounded(1, 400);
        const KeyDisplayListBuilder::Limits limits{random.bounded(0, 4), random.bounded(-1, 5), random.bounded(0, 6)};
        KeyLog recording;
        recording.fps = random.bounded(1, 60);
        const int density = random.bounded(1, 40);
        quint32 held = 0; // a modifier is only released by the key that was pressed
        for (int i = random.bounded(60), frame = random.bounded(-20, 20); i > 0; --i) {
            frame += random.bounded(density) - (random.bounded(30) == 0 ? 50 : 0);
            const int key = keys[size_t(random.bounded(int(keys.size())))];
            bool pressed = random.bounded(5) != 0;
            if (const quint32 modifier = modifierOfKey(key)) {
                pressed = !(held & modifier);
                held ^= modifier;
            }
            recording.records.push_back({key, pressed, frame});
        }
        const KeyDisplayList list = KeyDisplayListBuilder::build(recording, totalFrames, limits);
        const std::vector<NaiveKeyEntry> expected = naiveKeyDisplay(recording, totalFrames, limits);
        size_t next = 0;
        for (int frame = 0; frame < totalFrames; ++frame) {
            const bool isShown = next < expected.size() && expected[next].frame == frame;
            next += isShown ? 1 : 0;
            QCOMPARE(boxesAt(list, frame), isShown ? expected[next - 1].boxes() : "none");
            const int following = isShown && next < expected.size() ? expected[next].frame : -1;
            QCOMPARE(list.nextFrame(list.indexAt(frame), frame), following);
        }
    }
}

void KeyDisplayListTest::everyKeyHasPrintableText()
{
    std::vector<int> keys{-1, 0, 1, 0x1b, 0x7f, 0xa0, 0xad, 0x300, 0x2028, 0xd800, 0xe000, 0xfffe, 0x1fffff};
    const QMetaEnum named = QMetaEnum::fromType<Qt::Key>();
    for (int i = 0; i < named.keyCount(); ++i)
        keys.push_back(named.value(i));
    keys.insert(keys.end(), {0x424, 0x5d0, 0x4e2d, 0x1f600, 0x01005555, 0x04000043, INT_MAX, INT_MIN});
    for (const int key : keys) {
        const QString text = keyText(key);
        QVERIFY2(!text.trimmed().isEmpty() && text.isValidUtf16(), qPrintable(QString::number(key, 16)));
        for (const uint character : text.toUcs4())
            QVERIFY2(QChar::isPrint(character) && !QChar::isMark(character), qPrintable(QString::number(key, 16)));
    }
    QCOMPARE(keyText(0x424), QString("Ф"));
    QCOMPARE(keyText(0x4e2d), QString("中"));
    QCOMPARE(keyText(Qt::Key_Up), QString("Up"));
    QCOMPARE(keyText(Qt::Key_Dead_Acute), QString("Dead Acute"));
    QCOMPARE(keyText(0x1b), QString("Key 0x1b"));
}

QTEST_GUILESS_MAIN(KeyDisplayListTest)
#include "tst_key_display_list.moc"
