#include "recording/saving/RecordingSaver.h"
#include "support/Files.h"

#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtTest>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>

#include <dlfcn.h>
#include <unistd.h>

using namespace kel;
using namespace std::chrono_literals;

namespace
{
constexpr auto kLimit = 30s;

/// What the program has asked of the disk, which can be made to hang.
class Disk
{
public:
    void note(const QString &call)
    {
        std::unique_lock lock(m_mutex);
        m_calls << call;
        m_changed.notify_all();
        m_changed.wait_for(lock, kLimit, [this] { return !m_hangs; });
    }
    void setHanging(bool hangs)
    {
        std::lock_guard lock(m_mutex);
        m_hangs = hangs;
        m_changed.notify_all();
    }
    bool waitForCall()
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, kLimit, [this] { return !m_calls.isEmpty(); });
    }
    QStringList takeCalls()
    {
        std::lock_guard lock(m_mutex);
        return std::exchange(m_calls, {});
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    QStringList m_calls;
    bool m_hangs = false;
};

Disk disk;

QString nameOf(int file)
{
    return QFileInfo(QFile::symLinkTarget(QString("/proc/self/fd/%1").arg(file))).fileName();
}

template <typename Function>
Function *inLibrary(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}
} // namespace

// In place of those of the system's library.
extern "C" int fdatasync(int file)
{
    disk.note("sync " + nameOf(file));
    return inLibrary<int(int)>("fdatasync")(file);
}

extern "C" int fsync(int file)
{
    disk.note("sync directory " + nameOf(file));
    return inLibrary<int(int)>("fsync")(file);
}

extern "C" int rename(const char *from, const char *to) noexcept
{
    disk.note("rename to " + QFileInfo(QFile::decodeName(to)).fileName());
    return inLibrary<int(const char *, const char *)>("rename")(from, to);
}

class RecordingSaverTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void contentIsOnTheDiskBeforeItsName();
    void onlyWhatHasChangedIsSaved();
    void requestsAreMergedWhileTheDiskIsSlow();
    void settledMetadataIsNotPutInPlace();
    void reportsFailures();

private:
    QString path(const QString &name) const { return m_dir->filePath("recording/" + name); }
    void writeOldFile(const QString &name, const QByteArray &content) const;

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<RecordingSaver> m_saver;
};

void RecordingSaverTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    writeOldFile("Screen/screen_record.mp4", "video");
    writeOldFile("Mouse/cursors/arrow.png", "image");
    m_saver = std::make_unique<RecordingSaver>(path("."));
    disk.takeCalls();
}

/// A file that has not been written to just now.
void RecordingSaverTest::writeOldFile(const QString &name, const QByteArray &content) const
{
    writeFile(path(name), content);
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime));
}

void RecordingSaverTest::contentIsOnTheDiskBeforeItsName()
{
    m_saver->save("metadata");
    QVERIFY(m_saver->wait(kLimit));
    const QStringList calls = disk.takeCalls();
    QCOMPARE(calls.mid(0, 2), (QStringList{"sync TrackManager.meta.new", "rename to TrackManager.meta"}));
    QVERIFY2(calls.indexOf("sync directory recording") > 1, qPrintable(calls.join("; ")));
    for (const char *call :
         {"sync screen_record.mp4", "sync directory Screen", "sync arrow.png", "sync directory cursors"})
        QVERIFY2(calls.contains(call), qPrintable(calls.join("; ")));
    QCOMPARE(readFile(path("TrackManager.meta")), QByteArray("metadata"));
    QVERIFY(m_saver->settleMetadata());
}

void RecordingSaverTest::onlyWhatHasChangedIsSaved()
{
    m_saver->save();
    QVERIFY(m_saver->wait(kLimit));
    QCOMPARE(disk.takeCalls().count("sync screen_record.mp4"), 1);
    m_saver->save();
    QVERIFY(m_saver->wait(kLimit));
    QCOMPARE(disk.takeCalls().count("sync screen_record.mp4"), 0);
    for (int i = 0; i < 2; ++i) { // the second write may have the same time stamp
        writeFile(path("Screen/screen_record.mp4"), "video");
        m_saver->save();
        QVERIFY(m_saver->wait(kLimit));
        QCOMPARE(disk.takeCalls().count("sync screen_record.mp4"), 1);
    }
}

void RecordingSaverTest::requestsAreMergedWhileTheDiskIsSlow()
{
    disk.setHanging(true);
    m_saver->save("first");
    QVERIFY(disk.waitForCall());
    for (const char *metadata : {"second", "third", "", "fourth", ""})
        m_saver->save(metadata);
    QVERIFY(!m_saver->wait(1ms));
    disk.setHanging(false);
    QVERIFY(m_saver->wait(kLimit));
    QCOMPARE(disk.takeCalls().count("rename to TrackManager.meta"), 2);
    QCOMPARE(readFile(path("TrackManager.meta")), QByteArray("fourth"));
}

void RecordingSaverTest::settledMetadataIsNotPutInPlace()
{
    disk.setHanging(true);
    const auto end = qScopeGuard([] { disk.setHanging(false); });
    m_saver->save("first");
    QVERIFY(disk.waitForCall());
    m_saver->save("second");
    QVERIFY(!m_saver->settleMetadata());
    writeFile(path("TrackManager.meta"), "by the caller");
    disk.setHanging(false);
    QVERIFY(m_saver->wait(kLimit));
    QCOMPARE(readFile(path("TrackManager.meta")), QByteArray("by the caller"));
    QVERIFY(!QFileInfo::exists(path("TrackManager.meta.new")));
}

void RecordingSaverTest::reportsFailures()
{
    QVERIFY(QDir().mkpath(path("TrackManager.meta.new/occupied")));
    m_saver->save("metadata");
    QVERIFY(m_saver->wait(kLimit));
    QVERIFY(!m_saver->settleMetadata());
    QVERIFY(!m_saver->failures().metadata.isEmpty());
    QVERIFY(QDir(path("TrackManager.meta.new")).removeRecursively());
    m_saver->save("metadata");
    QVERIFY(m_saver->wait(kLimit));
    QVERIFY(m_saver->failures().metadata.isEmpty());
}

QTEST_GUILESS_MAIN(RecordingSaverTest)
#include "tst_recording_saver.moc"
