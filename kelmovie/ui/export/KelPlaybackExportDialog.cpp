#include "ui/export/KelPlaybackExportDialog.h"

#include "export/ExportInternals.h"
#include "export/KelExportDependencies.h"
#include "notification/KelMsgBox.h"
#include "notification/KelToastsMessage.h"
#include "text/ClockText.h"
#include "ui/export/ExportDialogInternals.h"
#include "ui_KelPlaybackExportDialog.h"

#include <KelMovie/KelExportPipeline.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLocale>
#include <QPointer>
#include <QTimer>

using namespace kel;

namespace
{

// How often events are processed: often enough for responsive buttons, too rarely to slow down the export.
constexpr int kEventIntervalMs = 20;
constexpr int kToastMs = 3000;

} // namespace

class Q_DECL_HIDDEN KelPlaybackExportDialog::Private : public KelExportMonitor
{
public:
    Private(KelPlaybackExportDialog *dialog, const KelExportRequest &wanted, const KelExportDependencies &dependencies);

    void exportProgress(int percent) override;
    void exportStatus(const Status &status) override;
    bool isExportCancelled() override;

    void runExport();
    void showFailure();
    void showWarning();
    static QString statusText(const Status &status);
    void showCompletePage();
    void minimizeApplication();
    void restoreApplication();
    void notifyAutoExit(bool on) const;

    KelPlaybackExportDialog *const q;
    Ui::KelPlaybackExportDialog ui;
    const KelExportRequest request;
    const std::unique_ptr<KelExportPipeline> pipeline;
    QElapsedTimer sinceEvents;
    QPointer<QWidget> minimized;
    bool isCancelled = false;
    bool isComplete = false;
    bool exitRecord = false;
};

KelPlaybackExportDialog::Private::Private(KelPlaybackExportDialog *dialog, const KelExportRequest &wanted,
                                          const KelExportDependencies &dependencies)
    : q(dialog)
    , request(wanted)
    , pipeline(ExportInternals::createPipeline(request, this, dependencies))
{
    ui.setupUi(q);
    ui.stackedWidget->setCurrentWidget(ui.pageExporting);
    ui.progressBar->setValue(0);
    ui.progressBarComplete->setValue(100);
    connect(ui.btnMinimize, &QPushButton::clicked, q, [this] { minimizeApplication(); });
    connect(ui.btnCancel, &QPushButton::clicked, q, &KelPlaybackExportDialog::reject);
    connect(ui.btnExitRecord, &QPushButton::clicked, q, [this] {
        exitRecord = true;
        q->accept();
    });
    connect(ui.btnComplete, &QPushButton::clicked, q, [this] {
        exitRecord = ui.cboxAutoExit->isChecked();
        notifyAutoExit(exitRecord);
        q->accept();
    });
}

void KelPlaybackExportDialog::Private::exportProgress(int percent)
{
    ui.progressBar->setValue(percent);
}

void KelPlaybackExportDialog::Private::exportStatus(const Status &status)
{
    ui.labelStatus->setText(statusText(status));
}

QString KelPlaybackExportDialog::Private::statusText(const Status &status)
{
    const bool isKnown = status.remainingMs >= 0;
    const QString time =
        ClockText::minutesSeconds(isKnown ? (status.remainingMs + 999) / 1000 : status.elapsedMs / 1000, 1);
    switch (status.stage) {
    case Status::Stage::Frames: {
        const QLocale locale;
        const QString text = isKnown ? tr("Frame %1 of %2, about %3 left") : tr("Frame %1 of %2, %3 elapsed");
        return text.arg(locale.toString(status.done), locale.toString(status.units), time);
    }
    case Status::Stage::Finishing:
        return (isKnown ? tr("Finishing the file, about %1 left") : tr("Finishing the file, %1 elapsed")).arg(time);
    case Status::Stage::Sound:
        return (isKnown ? tr("Adding sound, about %1 left") : tr("Adding sound, %1 elapsed")).arg(time);
    case Status::Stage::Saving:
        return (isKnown ? tr("Saving the file, about %1 left") : tr("Saving the file, %1 elapsed")).arg(time);
    }
    return QString();
}

bool KelPlaybackExportDialog::Private::isExportCancelled()
{
    if (!sinceEvents.isValid() || sinceEvents.hasExpired(kEventIntervalMs)) {
        QCoreApplication::processEvents();
        sinceEvents.start();
    }
    return isCancelled;
}

void KelPlaybackExportDialog::Private::runExport()
{
    const bool hasFile = pipeline->run();
    restoreApplication();
    if (!hasFile) {
        if (!isCancelled)
            showFailure();
        q->QDialog::reject();
        return;
    }
    isComplete = true;
    showWarning();
    if (isCancelled) { // too late to cancel
        q->accept();
        return;
    }
    const bool autoExits = request.fromRecording && request.autoExitAfterEncode;
    if (autoExits) {
        exitRecord = true;
        KelToastsMessage::showMessage(nullptr, KelToastsMessage::Success, tr("Encoding completed."), kToastMs, true,
                                      false);
    } else {
        showCompletePage();
    }
    // Only after a recording does the complete page offer a choice.
    if (!request.fromRecording || autoExits)
        q->accept();
}

void KelPlaybackExportDialog::Private::showFailure()
{
    const QString problem = pipeline->errorString();
    const QString title = tr("Export Error");
    switch (pipeline->failure()) {
    case KelExportPipeline::Failure::Exception:
        KelMsgBox::critical(q, title, problem);
        break;
    case KelExportPipeline::Failure::Sound:
        KelMsgBox::critical(q, title, tr("Failed to mix audio and video tracks"), problem);
        break;
    case KelExportPipeline::Failure::Start:
    case KelExportPipeline::Failure::Video:
    case KelExportPipeline::Failure::None:
        KelMsgBox::critical(q, title, tr("Failed to generate video track"), problem);
        break;
    }
}

void KelPlaybackExportDialog::Private::showWarning()
{
    const QString warning = pipeline->warningString();
    if (!warning.isEmpty())
        KelMsgBox::warning(q, tr("Export Complete"), tr("Exported with problems"), warning);
}

void KelPlaybackExportDialog::Private::showCompletePage()
{
    q->setWindowTitle(tr("Export Complete"));
    ui.cboxAutoExit->setChecked(request.autoExitAfterEncode);
    ui.cboxAutoExit->setVisible(request.fromRecording);
    ui.btnExitRecord->setVisible(request.fromRecording);
    connect(ui.cboxAutoExit, &QCheckBox::toggled, q, [this](bool on) { notifyAutoExit(on); });
    ui.stackedWidget->setCurrentWidget(ui.pageComplete);
    ui.btnComplete->setFocus();
}

void KelPlaybackExportDialog::Private::minimizeApplication()
{
    QWidget *window = QApplication::activeWindow() ? QApplication::activeWindow() : q;
    while (window->parentWidget())
        window = window->parentWidget();
    window->showMinimized();
    minimized = window;
}

/// Without a taskbar, the user could not restore the window.
void KelPlaybackExportDialog::Private::restoreApplication()
{
    if (!minimized || !minimized->isMinimized())
        return;
    minimized->setWindowState(minimized->windowState() & ~Qt::WindowMinimized);
    q->activateWindow();
}

void KelPlaybackExportDialog::Private::notifyAutoExit(bool on) const
{
    if (request.onExitRecord)
        request.onExitRecord(on);
}

KelPlaybackExportDialog::KelPlaybackExportDialog(const KelExportRequest &request, QWidget *parent)
    : KelPlaybackExportDialog(request, KelExportDependencies::real(), parent)
{
}

KelPlaybackExportDialog::KelPlaybackExportDialog(const KelExportRequest &request,
                                                 const KelExportDependencies &dependencies, QWidget *parent)
    : QDialog(parent)
    , d(std::make_unique<Private>(this, request, dependencies))
{
    setWindowTitle(tr("Exporting..."));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

KelPlaybackExportDialog::~KelPlaybackExportDialog() = default;

bool KelPlaybackExportDialog::run(const KelExportRequest &request, QWidget *parent, bool *cancelled)
{
    KelPlaybackExportDialog dialog(request, parent);
    const bool isAccepted = dialog.exec() == Accepted;
    if (cancelled)
        *cancelled = dialog.d->isCancelled;
    return isAccepted;
}

const KelExportPipeline &KelPlaybackExportDialog::pipeline() const
{
    return *d->pipeline;
}

bool KelPlaybackExportDialog::exitRecord() const
{
    return d->exitRecord;
}

int KelPlaybackExportDialog::exec()
{
    QTimer::singleShot(0, this, [this] { d->runExport(); });
    return QDialog::exec();
}

void KelPlaybackExportDialog::reject()
{
    if (d->isComplete) {
        accept();
        return;
    }
    d->isCancelled = true;
    QDialog::reject();
}

std::unique_ptr<KelPlaybackExportDialog> ExportDialogInternals::createDialog(const KelExportRequest &request,
                                                                             const KelExportDependencies &dependencies,
                                                                             QWidget *parent)
{
    return std::unique_ptr<KelPlaybackExportDialog>(new KelPlaybackExportDialog(request, dependencies, parent));
}
