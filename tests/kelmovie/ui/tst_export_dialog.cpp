#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/ScriptedDecoder.h"
#include "kelmovie/support/ScriptedEncoder.h"

#include "notification/KelToastsMessage.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "support/TestTable.h"
#include "support/WhenModal.h"
#include "ui/export/ExportDialogInternals.h"

#include <KelMovie/KelPlaybackExportDialog.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTextDocument>
#include <QtTest>

using namespace kel;
using Dialog = KelPlaybackExportDialog;
using Choices = QVector<bool>;

/// Exports a recording of 50 frames, the current one being 7, by a scripted encoder.
class ExportDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_recording.frames(50);
        m_encoder = std::make_shared<EncoderScript>();
        m_decoder = std::make_shared<DecoderScript>();
        KelPlaybackDependencies dependencies;
        dependencies.nowMs = [] { return 0; };
        dependencies.decoders = scriptedDecoders(m_decoder);
        m_dialog.reset();
        m_manager = PlaybackInternals::load(m_recording.path(), dependencies);
        m_manager->seek(7);
        m_exitChoices.clear();
        m_dir = std::make_unique<QTemporaryDir>();
        m_request = {};
        m_request.format = KelExportRequest::Gif;
        m_request.outputPath = m_dir->filePath("out.gif");
        m_request.playbackManager = m_manager.get();
        m_request.onExitRecord = [this](bool on) { m_exitChoices.append(on); };
    }

    void closesByItselfAfterPlayback()
    {
        makeDialog();
        const auto *const status = child<QLabel>("labelStatus");
        const auto *const progress = child<QProgressBar>("progressBar");
        QCOMPARE(progress->value(), 0);
        QStringList meanwhile;
        m_encoder->onFrame = [&](int frame) {
            if (frame == 49)
                meanwhile = QStringList{m_dialog->windowTitle(), status->text(), QString::number(progress->value())};
        };
        QCOMPARE(m_dialog->exec(), int(QDialog::Accepted));
        QCOMPARE(meanwhile.value(0), QString("Exporting..."));
        QVERIFY2(QRegularExpression("^Frame \\d+ of 50, .*\\d:\\d\\d").match(meanwhile.value(1)).hasMatch(),
                 qPrintable(meanwhile.value(1)));
        QVERIFY(meanwhile.value(2).toInt() > 0);
        QVERIFY2(status->text().startsWith("Saving the file"), qPrintable(status->text()));
        QCOMPARE(m_encoder->frames.size(), 50);
        QCOMPARE(progress->value(), 100);
        QVERIFY(!m_dialog->exitRecord());
        QVERIFY(m_exitChoices.isEmpty());
    }

    void asksAfterARecording_data()
    {
        const TestTable<bool, QString, bool, Choices> row("tick", "button", "exits", "choices");
        row("stay", false, "btnComplete", false, {false});
        row("exit from now on", true, "btnComplete", true, {true, true});
        row("exit this time", false, "btnExitRecord", true, {});
        row("escape keeps the file", false, "Escape", false, {});
    }

    void asksAfterARecording()
    {
        QFETCH(bool, tick);
        QFETCH(QString, button);
        m_request.fromRecording = true;
        makeDialog();
        auto *const box = child<QCheckBox>("cboxAutoExit");
        QString title;
        whenModal<Dialog>(
            [&](Dialog *) {
                title = m_dialog->windowTitle();
                if (tick)
                    box->click();
                press(button);
            },
            [&](Dialog *) { return box->isVisible(); });
        QCOMPARE(m_dialog->exec(), int(QDialog::Accepted));
        QCOMPARE(title, QString("Export Complete"));
        QTEST(m_dialog->exitRecord(), "exits");
        QTEST(m_exitChoices, "choices");
    }

    void autoExitsAfterARecording()
    {
        m_request.fromRecording = true;
        m_request.autoExitAfterEncode = true;
        makeDialog();
        QCOMPARE(m_dialog->exec(), int(QDialog::Accepted));
        QVERIFY(m_dialog->exitRecord());
        QString toast;
        for (const QWidget *window : QApplication::topLevelWidgets()) {
            if (const auto *note = qobject_cast<const KelToastsMessage *>(window))
                toast = note->text();
        }
        QCOMPARE(toast, QString("Encoding completed."));
    }

    void cancel_data()
    {
        const TestTable<QString, QString, int> row("when", "button", "result");
        row("between frames", "frame 20", "btnCancel", QDialog::Rejected);
        row("between frames, by key", "frame 20", "Escape", QDialog::Rejected);
        row("while the encoder finishes", "finishing", "btnCancel", QDialog::Rejected);
        row("too late", "complete", "btnCancel", QDialog::Accepted);
    }

    void cancel()
    {
        QFETCH(QString, when);
        QFETCH(QString, button);
        QFETCH(int, result);
        m_request.fromRecording = when == "complete"; // does not ask either
        makeDialog();
        m_encoder->hangsInClose = when == "finishing";
        m_encoder->onFrame = [&](int frame) {
            if (frame == 20 && when == "frame 20")
                press(button);
        };
        if (when == "finishing")
            whenModal<Dialog>([&](Dialog *) { press(button); }, [&](Dialog *) { return m_encoder->isClosing.load(); });
        connect(child<QProgressBar>("progressBar"), &QProgressBar::valueChanged, this, [&](int percent) {
            if (percent == 100)
                press(button);
        });
        QCOMPARE(m_dialog->exec(), result);
        const bool isComplete = result == QDialog::Accepted;
        QCOMPARE(QFile::exists(m_request.outputPath), isComplete);
        QCOMPARE(m_encoder->aborted.load(), !isComplete);
        QCOMPARE(m_encoder->frames.size(), when == "frame 20" ? 21 : 50);
        QCOMPARE(m_manager->currentFrame(), 7);
    }

    void runTellsWhetherItWasCancelled()
    {
        bool isCancelled = false;
        QTimer::singleShot(0, [] { static_cast<QDialog *>(QApplication::activeModalWidget())->reject(); });
        QVERIFY(!Dialog::run(m_request, nullptr, &isCancelled));
        QVERIFY(isCancelled);
        QVERIFY(Dialog::run(m_request, nullptr, &isCancelled));
        QVERIFY(!isCancelled);
        QVERIFY(QFile::exists(m_request.outputPath));
    }

    void restoresMinimizedWindow()
    {
        QWidget application;
        application.show();
        makeDialog(&application);
        bool wasMinimized = false;
        m_encoder->onFrame = [&](int frame) {
            if (frame == 10)
                press("btnMinimize");
            wasMinimized = wasMinimized || application.isMinimized();
        };
        QCOMPARE(m_dialog->exec(), int(QDialog::Accepted));
        QVERIFY(wasMinimized);
        QVERIFY(!application.isMinimized());
        m_dialog.reset();
    }

    void reportsProblem_data()
    {
        const TestTable<QString, QString, QString> row("text", "detail", "title");
        const auto failure = [&](const char *name, const char *text, const char *detail) {
            row(name, text, detail, "Export Error");
        };
        failure("start", "Failed to generate video track", "Track manager is null");
        failure("encoder", "Failed to generate video track", "Failed to encode frame 3: scripted failure");
        failure("exception", "An error occurred during export: no <more> paper", "");
        failure("destination", "Failed to mix audio and video tracks", "Failed to copy video file to output path: ");
        row("missing frames", "Exported with problems", "30 frames of the video could not be decoded",
            "Export Complete");
    }

    void reportsProblem()
    {
        const QString problem = QTest::currentDataTag();
        QFETCH(QString, detail);
        if (problem == "start")
            m_request.playbackManager = nullptr;
        if (problem == "encoder")
            m_encoder->failAtFrame = 3;
        if (problem == "destination") {
            m_request.format = KelExportRequest::Mp4;
            m_request.outputPath = m_dir->filePath("out.mp4");
        }
        for (int frame = 20; problem == "missing frames" && frame < 50; ++frame)
            m_decoder->failures[frame] = 100;
        m_encoder->onFrame = [&](int frame) {
            if (problem == "exception" && frame == 5)
                throw std::runtime_error("no <more> paper");
            if (problem == "destination" && frame == 5)
                QDir().mkpath(m_request.outputPath + "/in the way");
        };
        makeDialog();
        QString title;
        QString text;
        QTextDocument shownDetail;
        whenModal<QMessageBox>([&](QMessageBox *box) {
            title = box->windowTitle();
            text = box->text();
            shownDetail.setHtml(box->informativeText());
            box->button(QMessageBox::Ok)->click();
        });
        const int result = m_dialog->exec();
        QTEST(title, "title");
        QTEST(text, "text");
        QVERIFY2(shownDetail.toPlainText().startsWith(detail) && detail.isEmpty() == shownDetail.isEmpty(),
                 qPrintable(shownDetail.toPlainText()));
        QCOMPARE(result, int(problem == "missing frames" ? QDialog::Accepted : QDialog::Rejected));
        QCOMPARE(m_manager->currentFrame(), 7);
    }

private:
    void makeDialog(QWidget *parent = nullptr)
    {
        m_dialog = ExportDialogInternals::createDialog(m_request, scriptedEncoders(m_encoder), parent);
    }
    template <typename Widget>
    Widget *child(const char *name) const
    {
        return m_dialog->findChild<Widget *>(name);
    }
    /// Presses the button with this name, or Escape.
    void press(const QString &button) const
    {
        if (button == "Escape")
            QTest::keyClick(m_dialog.get(), Qt::Key_Escape);
        else
            QTest::mouseClick(child<QPushButton>(qPrintable(button)), Qt::LeftButton);
    }

    RecordingOnDisk m_recording;
    std::shared_ptr<EncoderScript> m_encoder;
    std::shared_ptr<DecoderScript> m_decoder;
    std::unique_ptr<KelPlaybackTrackManager> m_manager;
    std::unique_ptr<QTemporaryDir> m_dir;
    KelExportRequest m_request;
    std::unique_ptr<Dialog> m_dialog;
    Choices m_exitChoices;
};

QTEST_MAIN(ExportDialogTest)
#include "tst_export_dialog.moc"
