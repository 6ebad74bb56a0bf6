#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/ScriptedDecoder.h"
#include "kelmovie/support/ScriptedEncoder.h"

#include "notification/KelToastsMessage.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "ui/export/ExportDialogInternals.h"

#include <KelMovie/KelPlaybackExportDialog.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTextDocument>
#include <QTimer>
#include <QtTest>

using namespace kel;

class ExportDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void closesByItselfAfterPlayback();
    void asksAfterARecording_data();
    void asksAfterARecording();
    void autoExitsAfterARecording();
    void cancel_data();
    void cancel();
    void restoresMinimizedWindow();
    void warnsAboutMissingFrames();
    void reportsFailure_data();
    void reportsFailure();

private:
    std::unique_ptr<KelPlaybackExportDialog> makeDialog(QWidget *parent = nullptr)
    {
        return ExportDialogInternals::createDialog(m_request, scriptedEncoders(m_encoder), parent);
    }

    /// Runs `action` in the event loop of the dialog as soon as `isDue` returns true.
    static void when(const std::function<bool()> &isDue, const std::function<void()> &action)
    {
        auto *const timer = new QTimer(qApp);
        connect(timer, &QTimer::timeout, timer, [=] {
            if (!isDue())
                return;
            timer->deleteLater();
            timer->stop();
            action();
        });
        timer->start(5);
    }

    RecordingOnDisk m_recording;
    std::shared_ptr<EncoderScript> m_encoder;
    std::shared_ptr<DecoderScript> m_decoder;
    std::unique_ptr<KelPlaybackTrackManager> m_manager;
    QTemporaryDir m_dir;
    KelExportRequest m_request;
    QVector<bool> m_exitChoices;
};

void ExportDialogTest::init()
{
    m_encoder = std::make_shared<EncoderScript>();
    KelPlaybackDependencies dependencies;
    dependencies.nowMs = [] { return 0; };
    m_decoder = std::make_shared<DecoderScript>();
    dependencies.decoders = scriptedDecoders(m_decoder);
    m_recording.frames(50);
    m_manager = PlaybackInternals::load(m_recording.path(), dependencies);
    m_manager->seek(7);
    m_exitChoices.clear();
    m_request = {};
    m_request.format = 1;
    m_request.outputPath = m_dir.filePath("out.gif");
    m_request.playbackManager = m_manager.get();
    m_request.onExitRecord = [this](bool on) { m_exitChoices.append(on); };
}

void ExportDialogTest::closesByItselfAfterPlayback()
{
    const auto dialog = makeDialog();
    const auto *const status = dialog->findChild<QLabel *>("labelStatus");
    QString titleMeanwhile;
    QString statusMeanwhile;
    m_encoder->onFrame = [&](int) {
        titleMeanwhile = dialog->windowTitle();
        statusMeanwhile = status->text();
    };
    QCOMPARE(dialog->exec(), int(QDialog::Accepted));
    QCOMPARE(titleMeanwhile, QString("Exporting..."));
    QVERIFY2(QRegularExpression("^Frame \\d+ of 50, .*\\d:\\d\\d").match(statusMeanwhile).hasMatch(),
             qPrintable(statusMeanwhile));
    QVERIFY2(status->text().startsWith("Saving the file"), qPrintable(status->text()));
    QCOMPARE(m_encoder->frames.size(), 50);
    QCOMPARE(dialog->findChild<QProgressBar *>("progressBar")->value(), 100);
    QVERIFY(!dialog->exitRecord());
    QVERIFY(m_exitChoices.isEmpty());
}

void ExportDialogTest::asksAfterARecording_data()
{
    QTest::addColumn<bool>("tick");
    QTest::addColumn<QString>("button"); // empty: Escape
    QTest::addColumn<bool>("exits");
    QTest::addColumn<QVector<bool>>("choices");

    QTest::newRow("stay") << false << "btnComplete" << false << QVector<bool>{false};
    QTest::newRow("exit from now on") << true << "btnComplete" << true << QVector<bool>{true, true};
    QTest::newRow("exit this time") << false << "btnExitRecord" << true << QVector<bool>{};
    QTest::newRow("escape keeps the file") << false << "" << false << QVector<bool>{};
}

void ExportDialogTest::asksAfterARecording()
{
    QFETCH(bool, tick);
    QFETCH(QString, button);
    QFETCH(bool, exits);
    QFETCH(QVector<bool>, choices);

    m_request.fromRecording = true;
    const auto dialog = makeDialog();
    auto *const box = dialog->findChild<QCheckBox *>("cboxAutoExit");
    when([&] { return box->isVisible(); },
         [&] {
             QCOMPARE(dialog->windowTitle(), QString("Export Complete"));
             if (tick)
                 box->click();
             if (button.isEmpty())
                 QTest::keyClick(dialog.get(), Qt::Key_Escape);
             else
                 QTest::mouseClick(dialog->findChild<QPushButton *>(button), Qt::LeftButton);
         });
    QCOMPARE(dialog->exec(), int(QDialog::Accepted));
    QCOMPARE(dialog->exitRecord(), exits);
    QCOMPARE(m_exitChoices, choices);
}

void ExportDialogTest::autoExitsAfterARecording()
{
    m_request.fromRecording = true;
    m_request.autoExitAfterEncode = true;
    const auto dialog = makeDialog();
    QCOMPARE(dialog->exec(), int(QDialog::Accepted));
    QVERIFY(dialog->exitRecord());
    QString toast;
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (const auto *note = qobject_cast<const KelToastsMessage *>(window))
            toast = note->text();
    }
    QCOMPARE(toast, QString("Encoding completed."));
}

void ExportDialogTest::cancel_data()
{
    QTest::addColumn<bool>("whileFinishing");
    QTest::addColumn<bool>("byEscape");
    QTest::newRow("button, between frames") << false << false;
    QTest::newRow("escape, between frames") << false << true;
    QTest::newRow("button, while the encoder finishes") << true << false;
}

void ExportDialogTest::cancel()
{
    QFETCH(bool, whileFinishing);
    QFETCH(bool, byEscape);

    const auto dialog = makeDialog();
    const auto press = [&] {
        if (byEscape)
            QTest::keyClick(dialog.get(), Qt::Key_Escape);
        else
            QTest::mouseClick(dialog->findChild<QPushButton *>("btnCancel"), Qt::LeftButton);
    };
    m_encoder->hangsInClose = whileFinishing;
    if (whileFinishing) {
        when([&] { return m_encoder->frames.size() == 50; }, press);
    } else {
        m_encoder->onFrame = [&](int frame) {
            if (frame == 20)
                press();
        };
    }
    QCOMPARE(dialog->exec(), int(QDialog::Rejected));
    QVERIFY(m_encoder->aborted);
    QVERIFY(whileFinishing || m_encoder->frames.size() == 21);
    QCOMPARE(m_manager->currentFrame(), 7);
}

void ExportDialogTest::restoresMinimizedWindow()
{
    QWidget application;
    application.show();
    const auto dialog = makeDialog(&application);
    bool wasMinimized = false;
    m_encoder->onFrame = [&](int frame) {
        if (frame == 10)
            QTest::mouseClick(dialog->findChild<QPushButton *>("btnMinimize"), Qt::LeftButton);
        wasMinimized = wasMinimized || application.isMinimized();
    };
    QCOMPARE(dialog->exec(), int(QDialog::Accepted));
    QVERIFY(wasMinimized);
    QVERIFY(!application.isMinimized());
}

void ExportDialogTest::warnsAboutMissingFrames()
{
    for (int frame = 20; frame < 50; ++frame)
        m_decoder->failures[frame] = 100;
    const auto dialog = makeDialog();
    QString message;
    const auto box = [] { return qobject_cast<QMessageBox *>(QApplication::activeModalWidget()); };
    when([&] { return box() != nullptr; },
         [&] {
             QTextDocument detail;
             detail.setHtml(box()->informativeText());
             message = box()->text() + detail.toPlainText();
             box()->button(QMessageBox::Ok)->click();
         });
    QCOMPARE(dialog->exec(), int(QDialog::Accepted));
    QVERIFY2(message.contains("problems") && message.contains("30 frames"), qPrintable(message));
}

void ExportDialogTest::reportsFailure_data()
{
    QTest::addColumn<int>("failAtFrame");
    QTest::addColumn<bool>("throws");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("detail");

    QTest::newRow("encoder") << 3 << false << "Failed to generate video track"
                             << "Failed to encode frame 3: scripted failure";
    QTest::newRow("exception") << -1 << true << "An error occurred during export: no <more> paper"
                               << "";
}

void ExportDialogTest::reportsFailure()
{
    QFETCH(int, failAtFrame);
    QFETCH(bool, throws);
    QFETCH(QString, text);
    QFETCH(QString, detail);

    m_encoder->failAtFrame = failAtFrame;
    m_encoder->onFrame = [&](int frame) {
        if (throws && frame == 5)
            throw std::runtime_error("no <more> paper");
    };
    const auto dialog = makeDialog();
    QString title;
    QString message;
    QTextDocument detailMessage;
    const auto box = [] { return qobject_cast<QMessageBox *>(QApplication::activeModalWidget()); };
    when([&] { return box() != nullptr; },
         [&] {
             title = box()->windowTitle();
             message = box()->text();
             detailMessage.setHtml(box()->informativeText());
             box()->button(QMessageBox::Ok)->click();
         });
    QCOMPARE(dialog->exec(), int(QDialog::Rejected));
    QCOMPARE(title, QString("Export Error"));
    QCOMPARE(message, text);
    QCOMPARE(detailMessage.toPlainText(), detail);
    QCOMPARE(m_manager->currentFrame(), 7);
}

QTEST_MAIN(ExportDialogTest)
#include "tst_export_dialog.moc"
