#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/ScriptedDecoder.h"
#include "kelmovie/support/SoundFile.h"
#include "playback/PlaybackInternals.h"
#include "recording/FrameIndexReader.h"
#include "recording/FrameTimesReader.h"
#include "recording/KelRecordingFiles.h"
#include "recording/input/CursorListReader.h"
#include "recording/input/KeyLogReader.h"
#include "recording/input/MouseEventReader.h"
#include "recording/wav/RecordedSound.h"
#include "support/TestTable.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QProcess>
#include <QtTest>

using namespace kel;

using Read = std::function<bool(const QString &recordingDir)>;
Q_DECLARE_METATYPE(Read)

/// A recording from an unknown source must neither hang the program nor lead it to other files.
class UntrustedFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void readsOrdinaryFilesOnly_data();
    void readsOrdinaryFilesOnly();
};

void UntrustedFilesTest::readsOrdinaryFilesOnly_data()
{
    // Null content: as the fixture writes it.
    const TestTable<QString, QByteArray, Read> row("name", "content", "read");
    const QByteArray one = RecordingOnDisk::bigEndian({1, 1, 0});
    row("metadata", "TrackManager.meta", {}, [](const QString &dir) {
        KelRecordingMetadata metadata;
        return KelRecordingMetadata::load(dir, &metadata);
    });
    row("video", "Screen/screen_record.mp4", {}, [](const QString &dir) {
        KelPlaybackDependencies dependencies = KelPlaybackDependencies::real();
        dependencies.decoders = scriptedDecoders(std::make_shared<DecoderScript>());
        return PlaybackInternals::load(dir, dependencies)->isValidRecording();
    });
    row("frame index", "Screen/frame_indexes.dat", one, [](const QString &dir) {
        std::vector<int> frames;
        return readFrameIndex(dir + "/Screen", frames);
    });
    row("frame times", "Screen/frame_times.dat", one,
        [](const QString &dir) { return !readFrameTimes(dir + "/Screen").empty(); });
    for (const QString name : {"mousemoves-0.json", "mouseclicks-0.json"}) {
        row(qPrintable(name), "Mouse/" + name, "[]",
            [name](const QString &dir) { return readMouseEvents(dir + "/Mouse/" + name, [](const MouseRecord &) {}); });
    }
    row("cursors", "Mouse/cursor.json", "{}", [](const QString &dir) {
        CursorImages cursors;
        return readCursorList(dir + "/Mouse", cursors);
    });
    row("keys", "Keyboard/keyboard.keymeta", QByteArray(32, '\0'), [](const QString &dir) {
        KeyLog log;
        return readKeyLog(dir + "/Keyboard", log);
    });
    row("sound", "Voice/microphone_1.wav", SoundFile::wav(1000, 16, "sound"), [](const QString &dir) {
        return RecordedSound(RecordedSound::files(dir + "/Voice", KelRecordingFiles::kMicrophone)).isOpen();
    });
}

void UntrustedFilesTest::readsOrdinaryFilesOnly()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(Read, read);
    RecordingOnDisk recording;
    if (!content.isNull())
        recording.file(name, content);
    const QString path = recording.path() + '/' + name;
    QVERIFY(read(recording.path()));

    const QTemporaryDir outside;
    QVERIFY(QFile::rename(path, outside.filePath("file")));
    QVERIFY(QFile::link(outside.filePath("file"), path));
    QVERIFY2(!read(recording.path()), "a link");
    QVERIFY(QFile::remove(path));
    QCOMPARE(QProcess::execute("mkfifo", {path}), 0);
    QVERIFY2(!read(recording.path()), "a pipe");
    QVERIFY(QFile::remove(path));
    QVERIFY(QFile::rename(outside.filePath("file"), path));
    QVERIFY(read(recording.path()));

    const QString track = QFileInfo(path).path();
    if (track == recording.path())
        return;
    QVERIFY(QDir().rename(track, outside.filePath("track")));
    QVERIFY(QFile::link(outside.filePath("track"), track));
    QVERIFY2(!read(recording.path()), "a directory that is a link");
}

QTEST_MAIN(UntrustedFilesTest)
#include "tst_untrusted_files.moc"
