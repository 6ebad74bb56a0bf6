#include "ui/export/KelPlaybackExportDialog.h"

#include "export/ExportInternals.h"
#include "export/KelExportDependencies.h"
#include "notification/KelMsgBox.h"
#include "notification/KelToastsMessage.h"
#include "text/ClockText.h"
#include "ui_KelPlaybackExportDialog.h"

#include <QApplication>
#include <QLocale>
#include <QTimer>

using namespace kel;

namespace
{

// Between two looks at the mouse: short enough for a button to feel alive, long enough to cost nothing.
constexpr int kEventIntervalMs = 20;
constexpr int kToastMs = 3000;

} // namespace

KelPlaybackExportDialog::KelPlaybackExportDialog(const KelExportRequest &request, QWidget *parent)
    : KelPlaybackExportDialog(request, KelExportDependencies::real(), parent)
{
}

KelPlaybackExportDialog::KelPlaybackExportDialog(const KelExportRequest &request,
                                                 const KelExportDependencies &dependencies, QWidget *parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::KelPlaybackExportDialog>())
    , m_request(request)
    , m_pipeline(ExportInternals::createPipeline(m_request, this, dependencies))
{
    m_ui->setupUi(this);
    setWindowTitle(tr("Exporting..."));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    m_ui->stackedWidget->setCurrentWidget(m_ui->pageExporting);
    m_ui->progressBar->setValue(0);
    m_ui->progressBarComplete->setValue(100);
    connect(m_ui->btnMinimize, &QPushButton::clicked, this, &KelPlaybackExportDialog::minimizeApplication);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &KelPlaybackExportDialog::reject);
    connect(m_ui->btnExitRecord, &QPushButton::clicked, this, [this] {
        m_exitRecord = true;
        accept();
    });
    connect(m_ui->btnComplete, &QPushButton::clicked, this, [this] {
        m_exitRecord = m_ui->cboxAutoExit->isChecked();
        tellAutoExit(m_exitRecord);
        accept();
    });
}

KelPlaybackExportDialog::~KelPlaybackExportDialog() = default;

bool KelPlaybackExportDialog::run(const KelExportRequest &request, QWidget *parent, bool *cancelled)
{
    KelPlaybackExportDialog dialog(request, parent);
    const bool isAccepted = dialog.exec() == Accepted;
    if (cancelled)
        *cancelled = dialog.m_cancelled;
    return isAccepted;
}

int KelPlaybackExportDialog::exec()
{
    QTimer::singleShot(0, this, &KelPlaybackExportDialog::runExport);
    return QDialog::exec();
}

void KelPlaybackExportDialog::reject()
{
    if (m_isComplete) {
        accept();
        return;
    }
    m_cancelled = true;
    QDialog::reject();
}

void KelPlaybackExportDialog::exportProgress(int percent)
{
    m_ui->progressBar->setValue(percent);
}

void KelPlaybackExportDialog::exportStatus(const Status &status)
{
    m_ui->labelStatus->setText(statusText(status));
}

QString KelPlaybackExportDialog::statusText(const Status &status)
{
    const bool isKnown = status.remainingMs >= 0;
    const QString time =
        ClockText::minutesSeconds(isKnown ? (status.remainingMs + 999) / 1000 : status.elapsedMs / 1000, 1);
    switch (status.stage) {
    case Status::Stage::Frames: {
        const QLocale locale;
        const QString text = isKnown ? tr("Frame %1 of %2, about %3 left") : tr("Frame %1 of %2, %3 so far");
        return text.arg(locale.toString(status.done), locale.toString(status.units), time);
    }
    case Status::Stage::Finishing:
        return (isKnown ? tr("Finishing the file, about %1 left") : tr("Finishing the file, %1 so far")).arg(time);
    case Status::Stage::Sound:
        return (isKnown ? tr("Adding the sound, about %1 left") : tr("Adding the sound, %1 so far")).arg(time);
    case Status::Stage::Saving:
        return (isKnown ? tr("Saving the file, about %1 left") : tr("Saving the file, %1 so far")).arg(time);
    }
    return QString();
}

bool KelPlaybackExportDialog::isExportCancelled()
{
    if (!m_sinceEvents.isValid() || m_sinceEvents.hasExpired(kEventIntervalMs)) {
        QCoreApplication::processEvents();
        m_sinceEvents.start();
    }
    return m_cancelled;
}

void KelPlaybackExportDialog::runExport()
{
    const bool isComplete = m_pipeline->run();
    restoreApplication();
    if (!isComplete) {
        if (!m_cancelled)
            tellFailure();
        QDialog::reject();
        return;
    }
    m_isComplete = true;
    tellWarning();
    if (m_cancelled) { // too late
        accept();
        return;
    }
    const bool exitsByItself = m_request.fromRecording && m_request.autoExitAfterEncode;
    if (exitsByItself) {
        m_exitRecord = true;
        KelToastsMessage::showMessage(nullptr, KelToastsMessage::Success, tr("Encoding completed."), kToastMs, true,
                                      false);
    } else {
        showCompletePage();
    }
    // Only after a recording is there something to decide.
    if (!m_request.fromRecording || exitsByItself)
        accept();
}

void KelPlaybackExportDialog::tellFailure()
{
    const QString problem = m_pipeline->errorString();
    const QString title = tr("Export Error");
    switch (m_pipeline->failure()) {
    case KelExportPipeline::Failure::Exception:
        KelMsgBox::critical(this, title, problem);
        break;
    case KelExportPipeline::Failure::Sound:
        KelMsgBox::critical(this, title, tr("Failed to mix audio and video tracks"), problem);
        break;
    case KelExportPipeline::Failure::Video:
    case KelExportPipeline::Failure::None:
        KelMsgBox::critical(this, title, tr("Failed to generate video track"), problem);
        break;
    }
}

void KelPlaybackExportDialog::tellWarning()
{
    const QString warning = m_pipeline->warningString();
    if (!warning.isEmpty())
        KelMsgBox::warning(this, tr("Export Complete"), tr("The exported file lacks something"), warning);
}

void KelPlaybackExportDialog::showCompletePage()
{
    setWindowTitle(tr("Export Complete"));
    m_ui->cboxAutoExit->setChecked(m_request.autoExitAfterEncode);
    m_ui->cboxAutoExit->setVisible(m_request.fromRecording);
    m_ui->btnExitRecord->setVisible(m_request.fromRecording);
    connect(m_ui->cboxAutoExit, &QCheckBox::toggled, this, &KelPlaybackExportDialog::tellAutoExit);
    m_ui->stackedWidget->setCurrentWidget(m_ui->pageComplete);
    m_ui->btnComplete->setFocus();
}

void KelPlaybackExportDialog::minimizeApplication()
{
    QWidget *window = QApplication::activeWindow() ? QApplication::activeWindow() : this;
    while (window->parentWidget())
        window = window->parentWidget();
    window->showMinimized();
    m_minimized = window;
}

/// Where there is no taskbar, the user has no other way back to it.
void KelPlaybackExportDialog::restoreApplication()
{
    if (!m_minimized || !m_minimized->isMinimized())
        return;
    m_minimized->setWindowState(m_minimized->windowState() & ~Qt::WindowMinimized);
    activateWindow();
}

void KelPlaybackExportDialog::tellAutoExit(bool on) const
{
    if (m_request.onExitRecord)
        m_request.onExitRecord(on);
}
