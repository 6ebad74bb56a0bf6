#include "library/RecordingsFolder.h"
#include "library/RecordingsModel.h"
#include "library/RecordingsWindow.h"
#include "support/Controls.h"
#include "support/Files.h"
#include "support/ScratchHome.h"
#include "support/TestTable.h"
#include "support/WhenModal.h"
#include "widgets/MessagePage.h"
#include "widgets/NoticeBar.h"

#include <KelMovie/KelRecordingMetadata.h>
#include <KelMovie/KelRecordingState.h>

#include <QAbstractItemModelTester>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QtTest>

#include <algorithm>

namespace
{

constexpr int kHourMs = 3600000;
constexpr int kLimitMs = 60000;

void setAge(const QString &file, qint64 seconds)
{
    QFile opened(file);
    QVERIFY(opened.open(QIODevice::ReadWrite));
    QVERIFY(opened.setFileTime(QDateTime::currentDateTime().addSecs(-seconds), QFileDevice::FileModificationTime));
}

} // namespace

/// The folder of recordings, its list model and its window.
class RecordingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>(m_home.path("XXXXXX"));
        m_root = m_dir->filePath("recordings");
        m_program = QCoreApplication::applicationFilePath();
        qputenv("KEL_TEST_CALLS", m_dir->filePath("calls").toUtf8());
    }

    void cleanup() { m_window.reset(); }

    void findsRecordings()
    {
        QCOMPARE(RecordingsFolder(m_root).recordings().size(), 0);
        add("old", 3000);
        add("crashed", 2000, false);
        add("crashed at once", 1000);
        QVERIFY(QFile::remove(KelRecordingMetadata::filePath(path("crashed at once"))));
        add("damaged metadata", 500);
        writeFile(KelRecordingMetadata::filePath(path("damaged metadata")), "{");
        setAge(KelRecordingMetadata::filePath(path("damaged metadata")), 500);
        add("paused", 60, false);
        add("killed just now", 2, false);
        writeFile(path("killed just now") + "/recording.lock", {});
        add("in progress", 1, false);
        QVERIFY(QDir().mkpath(path("something else")));
        writeFile(path("a file"), "x");

        const RecordingsFolder folder(m_root);
        using State = KelRecordingState::State;
        const QVector<QPair<QString, State>> expected{
            {"in progress", State::InProgress},
            {"killed just now", State::Interrupted},
            {"paused", State::Interrupted},
            {"damaged metadata", State::Complete},
            {"crashed at once", State::Interrupted},
            {"crashed", State::Interrupted},
            {"old", State::Complete},
        };
        QVector<QPair<QString, State>> found;
        const auto recordings = folder.recordings();
        for (const auto &entry : recordings)
            found.append({QFileInfo(entry.dir).fileName(), KelRecordingState::stateOf(entry.dir)});
        QCOMPARE(found, expected);
        QCOMPARE(folder.interrupted(path("paused")),
                 (QStringList{path("killed just now"), path("crashed at once"), path("crashed")}));

        const QString first = folder.newRecordingDir();
        QVERIFY(QDir().mkpath(first));
        QVERIFY(!QFileInfo::exists(folder.newRecordingDir()));
    }

    void rename_data()
    {
        const TestTable<QString, QString> row("name", "result"); // no result: rejected
        row("another name", "Login bug", "Login bug");
        row("surrounding spaces", "  Login bug ", "Login bug");
        row("non-ASCII", "录制", "录制");
        row("empty", " ", "");
        row("existing name", "other", "");
        row("path to another folder", "../x", "");
        row("hidden", ".x", "");
    }

    void rename()
    {
        QFETCH(QString, name);
        QFETCH(QString, result);
        add("recording", 100);
        add("other", 200);
        RecordingsModel model(m_root, m_program);
        const QAbstractItemModelTester tester(&model);
        const QSignalSpy failed(&model, &RecordingsModel::renameFailed);
        QTRY_COMPARE_WITH_TIMEOUT(model.rowCount(), 2, kLimitMs);
        const QModelIndex index = model.index(0);
        QCOMPARE(model.setData(index, name, Qt::EditRole), !result.isEmpty());
        QCOMPARE(failed.count(), result.isEmpty() ? 1 : 0);
        const QString expected = result.isEmpty() ? QString("recording") : result;
        QCOMPARE(index.data().toString(), expected);
        QVERIFY(KelRecordingState::holdsRecording(path(expected)));

        const QSignalSpy refreshed(&model, &RecordingsModel::refreshed);
        const QPersistentModelIndex kept(index);
        model.refresh();
        QTRY_COMPARE_WITH_TIMEOUT(refreshed.count(), 1, kLimitMs);
        QVERIFY2(kept.isValid(), "the row is kept");
    }

    void readsDetailsOnRequest()
    {
        constexpr int count = 300; // more than can be requested at a time
        for (int i = 0; i < count; ++i) {
            QVERIFY(QDir().mkpath(path(QString::number(i))));
            writeFile(path(QString::number(i)) + "/TrackManager.meta", "{\"duration\":7000}");
        }
        openWindow();
        const QAbstractItemModel &model = *list()->model();
        QTRY_COMPARE_WITH_TIMEOUT(model.rowCount(), count, kLimitMs);
        const auto durationMs = [&](int row) {
            return model.index(row, 0).data(RecordingsModel::DetailsRole).value<RecordingDetails>().durationMs;
        };
        for (const int row : {0, count - 1}) {
            const QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
            const auto isRead = [&] {
                return std::any_of(changes.begin(), changes.end(),
                                   [row](const QVariantList &change) { return change[0].toModelIndex().row() == row; });
            };
            if (row > 0)
                QCOMPARE(durationMs(row), 0);
            QTRY_VERIFY_WITH_TIMEOUT(durationMs(row) == 7000 && isRead(), kLimitMs);
        }
        m_window->findChild<QLineEdit *>()->setText("299");
        QCOMPARE(listed(), QStringList{"299"});
    }

    void makesThumbnailsOnce()
    {
        add("a", 100);
        add("b", 200, false);
        for (int run = 0; run < 2; ++run) {
            openWindow();
            for (int row = 0; row < 2; ++row) {
                const auto details = [&] {
                    return list()->model()->index(row, 0).data(RecordingsModel::DetailsRole).value<RecordingDetails>();
                };
                QTRY_COMPARE_WITH_TIMEOUT(details().thumbnail.size(), QSize(288, 180), kLimitMs);
                QCOMPARE(details().durationMs, qint64(kHourMs));
                QVERIFY(details().bytes > 100000);
            }
            const QModelIndex second = list()->model()->index(1, 0);
            QCOMPARE(second.data(RecordingsModel::StatusRole).toString(), QString("Recovered after a crash"));
            QVERIFY(second.data(Qt::AccessibleTextRole).toString().contains("1:00:00"));
        }
        QStringList calls = QString::fromUtf8(readFile(m_dir->filePath("calls"))).split('\n', Qt::SkipEmptyParts);
        calls.sort();
        QCOMPARE(calls, (QStringList{path("a") + " 300", path("b") + " 300"}));
    }

    void windowFollowsTheFolder()
    {
        openWindow();
        auto *const empty = m_window->findChild<MessagePage *>();
        QTRY_VERIFY_WITH_TIMEOUT(empty->isVisible(), kLimitMs);
        const QSignalSpy record(m_window.get(), &RecordingsWindow::recordRequested);
        press("&Record");
        QCOMPARE(record.count(), 1);

        add("first", 100);
        QTRY_COMPARE_WITH_TIMEOUT(listed(), QStringList{"first"}, kLimitMs);
        QCOMPARE(controlFaults(m_window.get()).join('\n'), QString());
        add("second", 50);
        QTRY_COMPARE_WITH_TIMEOUT(listed(), (QStringList{"second", "first"}), kLimitMs);
        QVERIFY(!empty->isVisible());

        const QSignalSpy opened(m_window.get(), &RecordingsWindow::openRequested);
        list()->setCurrentIndex(list()->model()->index(1, 0));
        QTest::keyClick(list(), Qt::Key_Return);
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, list()->visualRect(list()->currentIndex()).center());
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, list()->visualRect(list()->currentIndex()).center());
        QCOMPARE(opened.count(), 2);
        QCOMPARE(opened.at(1).at(0).toString(), path("first"));

        m_window->setActiveRecording(path("first"));
        const QModelIndex active = list()->currentIndex();
        QCOMPARE(active.data(RecordingsModel::StatusRole).toString(), QString("Recording in progress"));
        QVERIFY2(!active.data(RecordingsModel::DetailsRole).isValid(), "read again, as size and duration have changed");
        QTest::keyClick(list(), Qt::Key_Return);
        QTest::keyClick(list(), Qt::Key_Delete);
        QCOMPARE(opened.count(), 2);
        QVERIFY(QFileInfo::exists(path("first")));

        QVERIFY(QDir(m_root).removeRecursively());
        QTRY_VERIFY_WITH_TIMEOUT(empty->isVisible(), kLimitMs);
    }

    void deletes_data()
    {
        const TestTable<bool, bool> row("hasTrash", "agrees");
        row("to the trash", true, false);
        row("no trash, delete permanently", false, true);
        row("no trash, keep", false, false);
    }

    void deletes()
    {
        QFETCH(bool, hasTrash);
        QFETCH(bool, agrees);
        const QString trash = m_home.path("Trash");
        QVERIFY(QDir(trash).removeRecursively());
        if (!hasTrash)
            writeFile(trash, "a file instead of the folder");
        add("goes", 100);
        add("goes too", 200);
        add("stays", 300);
        openWindow();
        QTRY_COMPARE_WITH_TIMEOUT(listed().size(), 3, kLimitMs);
        list()->setCurrentIndex(list()->model()->index(0, 0));
        QTest::keyClick(list(), Qt::Key_Down, Qt::ShiftModifier);
        if (!hasTrash) {
            whenModal<QMessageBox>(
                [=](QMessageBox *box) { box->button(agrees ? QMessageBox::Yes : QMessageBox::No)->click(); });
        }
        QTest::keyClick(list(), Qt::Key_Delete);
        const bool isGone = hasTrash || agrees;
        QTRY_COMPARE_WITH_TIMEOUT(listed(), isGone ? QStringList{"stays"} : (QStringList{"goes", "goes too", "stays"}),
                                  kLimitMs);
        QCOMPARE(QFileInfo::exists(path("goes")), !isGone);
        QCOMPARE(KelRecordingState::holdsRecording(trash + "/files/goes too"), hasTrash);
        QCOMPARE(m_window->findChild<NoticeBar *>()->text().contains("moved to the trash"), hasTrash);
        QVERIFY(QFile::remove(trash) || hasTrash);
    }

private:
    QString path(const QString &name) const { return m_root + '/' + name; }

    /// A recording whose files were written `age` seconds ago.
    void add(const QString &name, qint64 age, bool isComplete = true) const
    {
        const QString dir = path(name);
        KelRecordingMetadata metadata;
        metadata.durationMs = kHourMs;
        metadata.actualRecordedFrames = 900;
        metadata.complete = isComplete;
        QVERIFY(QDir().mkpath(dir + "/Screen"));
        QVERIFY(metadata.save(dir));
        writeFile(dir + "/Screen/screen_record.mp4", QByteArray(100000, 'v'));
        setAge(dir + "/Screen/screen_record.mp4", age);
        setAge(KelRecordingMetadata::filePath(dir), age);
    }

    void openWindow()
    {
        m_window = std::make_unique<RecordingsWindow>(m_root, m_program, nullptr);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    QListView *list() const { return m_window->findChild<QListView *>("RecordingsList"); }

    QStringList listed() const
    {
        QStringList names;
        for (int row = 0; row < list()->model()->rowCount(); ++row)
            names.append(list()->model()->index(row, 0).data().toString());
        return names;
    }

    void press(const QString &text) const
    {
        for (auto *const button : m_window->findChildren<QPushButton *>()) {
            if (button->text() == text)
                QTest::mouseClick(button, Qt::LeftButton);
        }
    }

    const ScratchHome m_home;
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_root;
    QString m_program;
    std::unique_ptr<RecordingsWindow> m_window;
};

/// Replaces `keldock frame`, and logs the call.
static int saveFrame(const QString &dir, const QString &frame, const QString &path)
{
    QFile calls(qEnvironmentVariable("KEL_TEST_CALLS"));
    const QByteArray call = (dir + ' ' + frame + '\n').toUtf8();
    return calls.open(QIODevice::Append) && calls.write(call) == call.size() &&
                   QImage(640, 400, QImage::Format_RGB32).save(path)
               ? 0
               : 1;
}

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "frame")
        return saveFrame(arguments.value(2), arguments.value(3), arguments.value(4));
    RecordingsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_recordings.moc"
