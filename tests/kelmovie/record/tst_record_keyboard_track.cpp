#include "kelmovie/support/InputFakes.h"
#include "kelmovie/support/InputFiles.h"
#include "record/KelRecordKeyboardTrack.h"
#include "support/LogCapture.h"
#include "support/OwnMemory.h"
#include "support/TestTable.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

namespace
{
/// Whether a crash may write the memory of this process to disk.
bool canDumpCore()
{
#ifdef Q_OS_LINUX
    return prctl(PR_GET_DUMPABLE) == 1;
#else
    return true;
#endif
}

const QRect kArea(100, 50, 642, 480);
constexpr QFile::Permissions kOwnerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

/// The records of an unfinished file, without the spare ones at its end.
QStringList recordsOfUnfinished(const QByteArray &file)
{
    QStringList lines = keyRecords(file);
    while (!lines.isEmpty() && lines.last() == "0 1 2147483647")
        lines.removeLast();
    return lines;
}

/// Whether `region` contains the bytes that `disguised` encodes. They are encoded so that the search does not find its
/// own argument.
bool contains(const QByteArray &region, const QByteArray &disguised)
{
    return std::search(region.begin(), region.end(), disguised.begin(), disguised.end(),
                       [](char byte, char secret) { return char(byte ^ '\x5a') == secret; }) != region.end();
}

/// Whether the bytes are anywhere in the writable memory of this process.
bool isInMemory(const QByteArray &disguised)
{
    bool isFound = false;
    OwnMemory::read([&](const QByteArray &region) { isFound = isFound || contains(region, disguised); });
    return isFound;
}
} // namespace

class RecordKeyboardTrackTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void fileByteForByte();
    void recordsByTheRules_data();
    void recordsByTheRules();
    void onlyTheOwnerCanReadTheFile();
    void validAfterEveryCheckpoint();
    void discardedKeysLeaveTheMemory();
    void unwritableFile();

private:
    void create(KelRecordKeyboardTrack::AtResume atResume);
    void play(const QStringList &steps);
    QByteArray file() const { return readFile(path()); }
    QString path() const { return m_dir->filePath("deep/Keyboard/keyboard.keymeta"); }

    ScriptedInput m_input;
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<KelRecordKeyboardTrack> m_track;
    QStringList m_failures;
};

void RecordKeyboardTrackTest::init()
{
    m_failures.clear();
    m_track.reset();
    m_dir = std::make_unique<QTemporaryDir>();
    create(KelRecordKeyboardTrack::AtResume::Discard);
}

void RecordKeyboardTrackTest::create(KelRecordKeyboardTrack::AtResume atResume)
{
    m_track = std::make_unique<KelRecordKeyboardTrack>(kArea, m_dir->filePath("deep/Keyboard"), atResume);
    m_track->setFailureHandler(
        [this](const QString &name, const QString &problem) { m_failures << name + ": " + problem; });
}

/// "keep" (the keys before a pause), "shortcut TEXT" (that pauses or stops), "frame N", "KEY(hex) STATE", "start",
/// "suspend", "pause", "on", "off", "checkpoint", "stop"
void RecordKeyboardTrackTest::play(const QStringList &steps)
{
    for (const QString &step : steps) {
        const QStringList words = step.split(' ');
        if (words[0] == "keep")
            create(KelRecordKeyboardTrack::AtResume::Keep);
        else if (words[0] == "shortcut")
            m_track->setControlShortcuts({QKeySequence("F9"), QKeySequence(words[1])});
        else if (words[0] == "frame")
            m_track->recordFrame(words[1].toInt());
        else if (words[0] == "start")
            m_track->startRecording();
        else if (words[0] == "suspend")
            m_track->suspend();
        else if (words[0] == "pause")
            m_track->pauseRecording();
        else if (words[0] == "on")
            m_track->enableCapture();
        else if (words[0] == "off")
            m_track->disableCapture();
        else if (words[0] == "checkpoint")
            m_track->checkpoint(0);
        else if (words[0] == "stop")
            m_track->stopRecording(100, 4000);
        else
            m_input.key(words[0].toInt(nullptr, 16), words[1].toInt());
    }
}

void RecordKeyboardTrackTest::fileByteForByte()
{
    play({"start", "frame 3", "1000021 1", "frame 260", "off", "on", "43 0", "stop"});
    QCOMPARE(file().toHex(' '), QByteArray("4b 45 4c 4b 04 00 00 00 1e 00 00 00 00 00 00 00 "
                                           "30 00 00 00 00 00 00 00 82 02 00 00 e0 01 00 00 "
                                           "21 00 00 01 01 00 00 00 03 00 00 00 "
                                           "00 00 00 00 00 00 00 00 04 01 00 00 "
                                           "00 00 00 00 01 00 00 00 04 01 00 00 "
                                           "43 00 00 00 00 00 00 00 04 01 00 00"));
}

void RecordKeyboardTrackTest::recordsByTheRules_data()
{
    // Whether keys are watched before the stop, the records kept, and whether switching on is refused.
    const TestTable<QString, bool, QString, bool> row("steps", "isWatched", "kept", "isRefused");
    row("no key", "start", true, "", false);
    row("as they come", "start; 41 1; frame 2; 41 1; 41 7; 43 0", true, "41 1 0; 41 1 2; 41 0 2; 43 0 2", false);
    row("before the start", "41 1; off; on", false, "", true);
    row("paused", "start; 41 1; pause; 42 1; on; off", false, "41 1 0", true);
    row("resumed", "start; 41 1; pause; start; frame 5; 42 1", true, "42 1 5", false);
    row("resumed, keys kept",
        "keep; start; 41 1; frame 3; pause; 42 1; start; frame 5; checkpoint; 43 1; frame 6; pause", false,
        "41 1 0; 0 0 3; 0 1 3; 43 1 5; 0 0 6", false);
    row("suspended until the pause gets through", "keep; start; 41 1; suspend; 42 1; pause; start; 43 1", true,
        "41 1 0; 0 0 0; 0 1 0; 43 1 0", false);
    row("paused by a shortcut",
        "keep; shortcut Ctrl+A; start; 43 1; 1000021 1; checkpoint; 41 1; suspend; pause; checkpoint", false,
        "43 1 0; 0 0 0", false);
    row("paused by a shortcut whose last key comes late", "shortcut Ctrl+A; start; 1000021 1; suspend", true, "",
        false);
    row("paused otherwise", "shortcut Ctrl+A; start; 1000021 1; 43 1; 41 1; suspend", true,
        "1000021 1 0; 43 1 0; 41 1 0", false);
    row("resumed while off, keys kept", "keep; start; 41 1; off; pause; start; 42 1; on; 43 1", true,
        "41 1 0; 0 0 0; 0 0 0; 0 1 0; 43 1 0", false);
    row("off and on", "start; 41 1; frame 4; off; off; 42 1; frame 6; on; on; 43 1; frame 7", true,
        "41 1 0; 0 0 4; 0 1 6; 43 1 6", false);
    row("off at the end", "start; off; 41 1", false, "0 0 0", false);
    row("off stays off over a pause", "start; off; pause; 41 1; frame 3; start; 42 1", false, "0 0 3", false);
    row("off and on, both while paused", "start; pause; off; on; start; 42 1", true, "42 1 0", true);
    row("off before the start gets through", "off; start; 41 1; frame 2; on; 42 1", true, "0 0 0; 0 1 2; 42 1 2",
        false);
}

void RecordKeyboardTrackTest::recordsByTheRules()
{
    QFETCH(QString, steps);
    QFETCH(bool, isRefused);
    LogCapture log;
    play(steps.split("; "));
    QTEST(m_input.isWatched(KelKeyMouseHook::Keyboard), "isWatched");
    play({"stop", "44 1"});
    QVERIFY(!m_input.isWatched(KelKeyMouseHook::Keyboard));
    QTEST(keyRecords(file()).join("; "), "kept");
    QCOMPARE(log.take().join(""), isRefused ? "W KelRecordKeyboardTrack: 无法启用钩子 - 未在录制状态" : "");
    QCOMPARE(m_failures, QStringList());
}

void RecordKeyboardTrackTest::onlyTheOwnerCanReadTheFile()
{
    QVERIFY(canDumpCore());
    writeFile(path(), {});
    QVERIFY(QFile::setPermissions(path(), kOwnerOnly | QFile::ReadGroup | QFile::ReadOther));
    for (const char *step : {"checkpoint", "pause", "checkpoint", "stop"}) {
        play({"start", "41 1", step});
        QCOMPARE(QFile::permissions(path()), kOwnerOnly);
        QVERIFY(!canDumpCore() || QByteArray(step) == "stop");
    }
    QVERIFY(canDumpCore());
    QCOMPARE(QDir(m_dir->filePath("deep/Keyboard")).entryList(QDir::Files | QDir::Hidden),
             QStringList{"keyboard.keymeta"});
}

void RecordKeyboardTrackTest::validAfterEveryCheckpoint()
{
    play({"start", "checkpoint"});
    QCOMPARE(recordsOfUnfinished(file()), QStringList());
    QStringList typed;
    for (const int count : {1, 0, 254, 1, 1, 700, 300}) {
        for (int i = 0; i < count; ++i) {
            const QString frame = QString::number(typed.size());
            play({"frame " + frame, "41 1"});
            typed << "41 1 " + frame;
        }
        play({"checkpoint"});
        QCOMPARE(recordsOfUnfinished(file()), typed);
    }
    play({"pause", "checkpoint"});
    QCOMPARE(recordsOfUnfinished(file()), typed);
    play({"start", "checkpoint"});
    QCOMPARE(recordsOfUnfinished(file()), QStringList());

    // Records that fit into the existing file are written even where no new file can be created, as on a full disk.
    play({"42 1"});
    QVERIFY(QFile::rename(m_dir->filePath("deep"), m_dir->filePath("elsewhere")));
    play({"stop"});
    QCOMPARE(recordsOfUnfinished(readFile(m_dir->filePath("elsewhere/Keyboard/keyboard.keymeta"))).mid(0, 1),
             QStringList{"42 1 1256"});
    QCOMPARE(m_failures, QStringList());
}

void RecordKeyboardTrackTest::discardedKeysLeaveTheMemory()
{
    // Two consecutive records, encoded so that the search does not find this variable.
    QByteArray records = QByteArray::fromHex("34 12 5e 4c 01 00 00 00 39 30 00 00 35 12 5e 4c 01 00 00 00 39 30 00 00");
    for (char &byte : records)
        byte = char(byte ^ '\x5a');

    // Enough of them that some would remain in freed memory until the search.
    QStringList type{"frame 12345"};
    for (int i = 0; i < 300; ++i)
        type << "4c5e1234 1"
             << "4c5e1235 1";
    type << "checkpoint";
    for (const QStringList &end : {QStringList{"pause", "start"}, QStringList{"stop"}}) {
        play(QStringList{"start"} + type);
        QVERIFY2(isInMemory(records), "the search must find them while they are kept");
        play(end);
        QVERIFY(!isInMemory(records));
    }
}

void RecordKeyboardTrackTest::unwritableFile()
{
    QVERIFY(QDir().mkpath(path() + "/occupied"));
    LogCapture log;
    play({"start", "41 1", "checkpoint", "stop"});
    QCOMPARE(log.take(), QStringList{QString("W KelRecordKeyboardTrack: 无法写入文件: \"%1\"").arg(path())});
    QCOMPARE(m_failures.size(), 1);
    QVERIFY(m_failures[0].startsWith(QString("Keyboard track: cannot write %1: ").arg(path())));
    QCOMPARE(QDir(m_dir->filePath("deep/Keyboard")).entryList(QDir::Files), QStringList());
}

QTEST_MAIN(RecordKeyboardTrackTest)
#include "tst_record_keyboard_track.moc"
