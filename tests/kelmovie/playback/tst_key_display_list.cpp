#include "kelmovie/support/KeyScript.h"

#include "playback/keys/KeyDisplayListBuilder.h"
#include "playback/keys/KeyNames.h"
#include "recording/RecordingTimeline.h"
#include "support/TestTable.h"

#include <QtTest>

using namespace kel;

namespace
{

QString boxText(const KeyDisplayItem &item)
{
    if (item.type == KeyDisplayItem::NoType)
        return {};
    return QString("%1:%2").arg(item.type).arg(item.text) + (item.count > 1 ? QString("*%1").arg(item.count) : "");
}

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

/// Of a recording of 200 frames at 30 per second.
KeyDisplayList build(const QString &script, const KelPlaybackRules &rules,
                     const KeyDisplaySettings &settings = {2, 3, 5, 15})
{
    const RecordingTimeline timeline(200, 30, 200 * 1000 / 30);
    return KeyDisplayListBuilder::build({30, {}, keyScript(script)}, 200, settings, rules, timeline);
}

} // namespace

class KeyDisplayListTest : public QObject
{
    Q_OBJECT

private slots:
    void showsBoxes_data();
    void showsBoxes();
    void followsTypingPrograms();
    void hidesTypedText();
    void hiddenKeysTakeNoRoom();
    void keepTimeFollowsTheRecording();
    void followsLimits();
    void everyKeyHasPrintableText();
};

void KeyDisplayListTest::showsBoxes_data()
{
    // By default, and by the recommended rules; empty when they do not differ.
    const TestTable<QString, int, QString, QString> row("script", "frame", "byDefault", "recommended");

    const QString abc = "10:+A 12:+B 14:+C";
    row("before the first", abc, 9, "none", "");
    row("typing", abc, 11, "| 1:A", "");
    row("continuous typing", abc, 14, "| 1:ABC", "");
    row("kept for two seconds", abc, 74, "| 1:ABC", "");
    row("expired", abc, 75, "none", "");
    row("a release extends it", abc + " 20:-C", 80, "| 1:ABC", "");
    row("five in a box", "1:+A 2:+B 3:+C 4:+D 5:+E 6:+F", 6, "1:ABCDE | 1:F", "");
    row("modifier alone", "1:+Control", 1, "| 4:Ctrl", "");
    row("modifier released", "1:+Control 5:-Control", 5, "none", "");
    row("modifier stays removed", "1:+Control 5:-Control", 6, "none", "");
    row("combination", "1:+Control 3:+C", 3, "| 8:Ctrl+C", "");
    row("combination stays", "1:+Control 3:+C 5:-C 6:-Control", 66, "| 8:Ctrl+C", "");
    row("combination repeated", "1:+Control 3:+C 5:-C 6:+C", 6, "| 8:Ctrl+C*2", "");
    row("next combination", "1:+Control 3:+C 5:-C 6:-Control 8:+Control 9:+V", 9, "8:Ctrl+C | 8:Ctrl+V", "");
    row("all modifiers", "1:+Meta 2:+Alt 3:+Control 4:+Shift 5:+A", 5, "| 8:Shift+Ctrl+Alt+Meta+A", "");
    row("typing, then a shortcut", "1:+A 2:+B 4:+Control 6:+C", 6, "1:AB | 8:Ctrl+C", "");
    row("repeated", "1:+Return 2:-Return 3:+Return", 3, "| 2:Return*2", "");
    row("different keys", "1:+Return 3:+F5 5:+Left", 5, "2:Return 2:F5 | 2:Left", "");
    row("history is limited", "1:+F1 2:+F2 3:+F3 4:+F4 5:+F5", 5, "2:F3 2:F4 | 2:F5", "");
    row("history expires first", "1:+F1 30:+F2", 62, "| 2:F2", "");
    row("capture off", "1:+A 3:off 5:+B", 5, "| 1:A", "");
    row("capture on again", "1:+A 3:off 5:+B 7:on 9:+C", 9, "| 1:AC", "");
    row("record before the start", "-7:+Control 3:+C", 3, "| 8:Ctrl+C", "");
    row("record after the end", "3:+C 2000000000:+D", 4, "| 1:C", "");

    // Several keys in one frame.
    const QString fast = "9:+A 9:+B 9:-A 10:+C";
    row("fast typing: first frame", fast, 9, "| 1:A", "");
    row("fast typing: second key of the frame", fast, 10, "| 1:AC", "| 1:AB");
    row("fast typing: the next frame's key", fast, 11, "| 1:AC", "| 1:ABC");
    row("fast typing at the end", "199:+A 199:+B 199:+C", 199, "| 1:A", "| 1:ABC");
    row("modifiers of the same frame count", "1:+A 1:+Control 3:+C", 3, "1:A | 8:Ctrl+C", "");
    const QString copyPaste = "8:+Control 8:+C 8:-C 8:+V 8:-V 8:-Control 8:+F1";
    row("instant combination", copyPaste, 8, "| 4:Ctrl", "| 8:Ctrl+C");
    row("second instant combination", copyPaste, 9, "| 4:Ctrl", "8:Ctrl+C | 8:Ctrl+V");
    row("key after instant combinations", copyPaste, 10, "| 4:Ctrl", "8:Ctrl+C 8:Ctrl+V | 2:F1");
    row("instant combination after typing", "8:+A 8:+Control 8:+C", 9, "| 1:A", "1:A | 8:Ctrl+C");
    row("instant modifier", "8:+Control 8:-Control 8:+A", 8, "| 4:Ctrl", "");
    row("after an instant modifier", "8:+Control 8:-Control 8:+A", 9, "| 4:Ctrl", "| 1:A");
    row("auto-repeat takes no frame", "1:+Up 1:+Up 2:+Up 2:+Up 2:-Up 2:+F1", 3, "| 2:Up*2", "2:Up*4 | 2:F1");

    // A release that was not heard.
    row("locked screen", "1:+Meta 2:+L 150:+A", 150, "| 8:Meta+A", "| 1:A");
    row("modifier held for long", "1:+Control 150:+C", 150, "| 8:Ctrl+C", "");
    row("key held for long", "1:+Control 2:+C 90:-C 91:+V", 91, "| 8:Ctrl+V", "");
    row("capture switched", "1:+Control 2:+C 3:off 9:on 10:+V", 10, "8:Ctrl+C | 8:Ctrl+V", "8:Ctrl+C | 1:V");
    row("modifier alone, then capture off", "1:+Control 3:off", 4, "| 4:Ctrl", "none");

    // What types a character in some layout.
    row("other letters", "1:+П 2:+Ä 3:+7 4:+Space 5:+Comma", 5, "1:7 2:Space | 2:,", "| 1:ПÄ7␣,");
    row("Shift types", "1:+A 2:+Shift 3:+B 4:-B 5:-Shift 6:+C", 6, "1:A 8:Shift+B | 1:C", "| 1:ABC");
    row("Shift types nothing", "1:+A 2:+Shift 3:-Shift 4:+C", 3, "1:A |", "");
    row("AltGr types", "1:+AltGr 3:+At 4:-At 5:-AltGr", 5, "| 2:@", "| 1:@");
    row("dead key", "1:+E 2:+Dead_Acute 3:+E", 3, "1:E 2:Dead Acute | 1:E", "| 1:EE");
    row("combination with another letter", "1:+Control 2:+Ä", 2, "| 8:Ctrl+Ä", "");
    row("combination with Space", "1:+Shift 2:+Control 3:+Space", 3, "| 8:Shift+Ctrl+Space", "");
    row("Shift and a named key", "1:+Shift 3:+Backtab", 3, "| 8:Shift+Tab", "");

    row("release while nothing is shown", "1:-A 2:+B", 2, "| 1:B", "");
    row("released modifier keeps the combination", "1:+Control 3:+C 5:-Control", 5, "| 8:Ctrl+C", "");
    row("one of two modifiers released", "1:+Control 2:+Shift 3:-Shift", 3, "| 4:Shift+Ctrl", "");
    row("the same text of another type", "1:+Control 2:+F1 3:-Control 4:+F1 5:+F1", 5, "8:Ctrl+F1 | 2:F1*2", "");
    row("the current box expires with its history", "1:+F1 2:+F2", 63, "none", "");
    row("capture off, nothing shown", "1:off 3:+A", 3, "|", "none");

    row("Windows key", "1:+Shift 2:+Meta 3:+S", 3, "| 8:Shift+Meta+S", "");
    // Names in older recordings on X11.
    row("Super", "1:+Super_L 3:+E", 3, "| 8:Meta+E", "");
    row("right Super alone", "1:+Super_R", 1, "| 4:Meta", "");
    row("Alt pressed after Shift", "1:+Super_L 2:-Super_L 3:+Shift 4:+Meta 5:+Tab", 5, "| 8:Shift+Alt+Tab", "");
    row("Alt released before Shift", "1:+Shift 2:+Alt 3:-Meta 4:-Shift 5:+F1", 5, "| 2:F1", "");
    row("Alt released after Shift", "1:+Shift 2:+Meta 3:-Shift 4:-Alt 5:+F1", 5, "| 2:F1", "");
}

void KeyDisplayListTest::showsBoxes()
{
    QFETCH(QString, script);
    QFETCH(int, frame);
    QFETCH(QString, byDefault);
    QFETCH(QString, recommended);
    QCOMPARE(boxesAt(build(script, {}), frame), byDefault);
    QCOMPARE(boxesAt(build(script, KelPlaybackRules::recommended()), frame),
             recommended.isEmpty() ? byDefault : recommended);
}

/// A program types: everything is displayed, in order, and not much later.
void KeyDisplayListTest::followsTypingPrograms()
{
    QString text;
    QString script;
    for (int i = 0; i < 300; ++i) {
        text += QChar('A' + i * 7 % 26);
        script += QString("5:+%1 5:-%1 ").arg(text.back());
    }
    const KeyDisplayList list = build(script + "6:+F1", KelPlaybackRules::recommended());
    QString seen;
    QString box;
    int frame = 5;
    for (; !boxesAt(list, frame).endsWith("2:F1"); ++frame) {
        QVERIFY(frame < 90);
        const QString current = list.entries[size_t(list.indexAt(frame))].current.text;
        if (!current.startsWith(box))
            seen += box;
        box = current;
        QVERIFY(frame > 15 || seen.size() + box.size() == frame - 4); // one after another
    }
    QCOMPARE(seen + box, text);
}

/// Of everything that one can type, nothing is displayed but what types no character.
void KeyDisplayListTest::hidesTypedText()
{
    QString script;
    int frame = 1;
    for (const char *key : {"Return", "A", "П", "Ä", "Space", "At", "Dead_Circumflex", "Multi_key", "7", "F1"}) {
        script += QString("%1:+%2 %1:-%2 ").arg(frame += 3).arg(key);
        for (const char *held : {"Shift", "AltGr"})
            script += QString("%1:+%2 %1:+%3 %1:-%3 %1:-%2 ").arg(frame += 3).arg(held, key);
    }
    KelPlaybackRules rules;
    rules.hidesAllTypedText = rules.shownKeysOnlyInHistory = true;
    for (const bool showsEveryPress : {false, true}) {
        rules.showsEveryKeyPress = showsEveryPress;
        const KeyDisplayList list = build(script, rules, {1, 5, 5, 14});
        QStringList seen;
        for (const KeyDisplayEntry &entry : list.entries)
            seen += entry.current.text;
        seen.removeDuplicates();
        seen.removeAll("");
        seen.sort();
        QCOMPARE(seen, showsEveryPress ? (QStringList{"F1", "Return", "Shift+F1", "Shift+Return"})
                                       : (QStringList{"F1", "Return", "Shift"}));
    }
    // Not a combination, even where the release of the modifier goes by unnoticed.
    KelPlaybackRules alone;
    alone.hidesAllTypedText = true;
    QCOMPARE(boxesAt(build("1:+Control 1:-Control 2:+A", alone), 2), "| 1:A");
}

/// Hidden keys displace and prolong nothing, but what they interrupt is not continued.
void KeyDisplayListTest::hiddenKeysTakeNoRoom()
{
    const auto boxes = [](const QString &script, int frame, bool shownKeysOnly) {
        KelPlaybackRules rules;
        rules.shownKeysOnlyInHistory = shownKeysOnly;
        return boxesAt(build(script, rules, {2, 2, 5, KeyDisplayItem::Other}), frame);
    };
    const QString typed = "1:+F1 2:+F2 3:+A 4:+Shift 5:+Return 6:-Return 7:-Shift 8:+B 70:-B ";
    QCOMPARE(boxes(typed, 8, false), "8:Shift+Return | 1:B");
    QCOMPARE(boxes(typed, 8, true), "2:F1 | 2:F2");
    QCOMPARE(boxes(typed, 63, true), "none");
    QCOMPARE(boxes(typed + "9:+F2", 9, true), "2:F2 | 2:F2");
}

void KeyDisplayListTest::followsLimits()
{
    struct Case {
        KeyDisplaySettings limits;
        QString script;
        int frame;
        QString boxes;
    };
    for (const Case &c : {Case{{0, 5, 5, 15}, "10:+A", 10, "| 1:A"},
                          {{0, 5, 5, 15}, "10:+A", 11, "none"},
                          {{-1, 5, 5, 15}, "10:+A", 10, "| 1:A"},
                          {{2, -1, 5, 15}, "1:+F1 2:+F2", 2, "| 2:F2"},
                          {{2, 1, 5, 15}, "1:+F1 2:+F2", 2, "| 2:F2"},
                          {{2, 2, 5, 15}, "1:+F1 2:+F2 3:+F3", 3, "2:F2 | 2:F3"},
                          {{2, 5, 0, 15}, "1:+A 2:+B", 2, "1:A | 1:B"},
                          {{2, 5, 1, 15}, "1:+A 2:+B 3:+C", 3, "1:A 1:B | 1:C"}})
        QCOMPARE(boxesAt(build(c.script, {}, c.limits), c.frame), c.boxes);

    // The next frame of an overlay that lasts, of one that follows later, and of none.
    const KeyDisplayList list = build("10:+A 100:+B", {});
    QCOMPARE(list.nextFrame(list.indexAt(10), 10), 11);
    QCOMPARE(list.nextFrame(list.indexAt(70), 70), 100);
    QCOMPARE(list.nextFrame(list.indexAt(160), 160), -1);
    QCOMPARE(list.nextFrame(list.indexAt(80), 80), -1);
}

void KeyDisplayListTest::keepTimeFollowsTheRecording()
{
    // 24 frames per second, which the file does not say.
    const RecordingTimeline timeline(200, 24, 200 * 1000 / 24);
    KelPlaybackRules rules;
    for (const int keptFrames : {60, 48}) {
        const KeyDisplayList list =
            KeyDisplayListBuilder::build({30, {}, keyScript("10:+A")}, 200, {2, 3, 5, 15}, rules, timeline);
        QCOMPARE(boxesAt(list, 10 + keptFrames), "| 1:A");
        QCOMPARE(boxesAt(list, 11 + keptFrames), "none");
        rules.keysFollowRecordingTime = true;
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
