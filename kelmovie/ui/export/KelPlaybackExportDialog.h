#pragma once

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelExportRequest.h>
#include <KelMovie/KelMovieGlobal.h>

#include <QDialog>
#include <QElapsedTimer>
#include <QPointer>

#include <memory>

struct KelExportDependencies;

namespace Ui
{
class KelPlaybackExportDialog;
}

/// The modal dialog in which an export runs: progress, cancel, and after a recording the question whether to leave the
/// recording mode. A window that was minimised from it comes back when the export is over. Needs a QApplication.
class KELMOVIE_EXPORT KelPlaybackExportDialog : public QDialog, private KelExportMonitor
{
    Q_OBJECT

public:
    /// exec() starts the export.
    explicit KelPlaybackExportDialog(const KelExportRequest &request, QWidget *parent = nullptr);
    ~KelPlaybackExportDialog() override;

    /// Exports in a dialog of its own. True when the file is complete; what went wrong has been told to the user then.
    /// `cancelled`, when given, tells whether the user gave up.
    static bool run(const KelExportRequest &request, QWidget *parent = nullptr, bool *cancelled = nullptr);

    /// The user wants to leave the recording mode, or has said so once for all. Valid after exec().
    bool exitRecord() const { return m_exitRecord; }

public slots:
    /// Starts the export and returns when the dialog has closed.
    int exec() override;

    /// While exporting: cancels. Afterwards the file is there, and closing the dialog takes nothing back.
    void reject() override;

protected:
    /// With other encoders, for tests of the module.
    KelPlaybackExportDialog(const KelExportRequest &request, const KelExportDependencies &dependencies,
                            QWidget *parent);

private:
    void exportProgress(int percent) override;
    void exportStatus(const Status &status) override;
    bool isExportCancelled() override;

    void runExport();
    void tellFailure();
    void tellWarning();
    static QString statusText(const Status &status);
    void showCompletePage();
    void minimizeApplication();
    void restoreApplication();
    void tellAutoExit(bool on) const;

    const std::unique_ptr<Ui::KelPlaybackExportDialog> m_ui;
    const KelExportRequest m_request;
    const std::unique_ptr<KelExportPipeline> m_pipeline;
    QElapsedTimer m_sinceEvents;
    QPointer<QWidget> m_minimized;
    bool m_cancelled = false;
    bool m_isComplete = false;
    bool m_exitRecord = false;
};
