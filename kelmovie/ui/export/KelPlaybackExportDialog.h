#pragma once

#include <KelMovie/KelExportRequest.h>
#include <KelMovie/KelMovieGlobal.h>

#include <QDialog>

#include <memory>

class KelExportPipeline;
struct KelExportDependencies;

namespace kel
{
class ExportDialogInternals;
} // namespace kel

/// The modal dialog in which an export runs. It shows the progress, can be canceled and reports failures in a message
/// box; after a recording it then asks whether to exit recording mode. A window that was minimized from it is restored
/// at the end. Needs a QApplication. GUI thread.
class KELMOVIE_EXPORT KelPlaybackExportDialog : public QDialog
{
    Q_OBJECT

public:
    /// Copies the request. Its playback manager must outlive the export.
    explicit KelPlaybackExportDialog(const KelExportRequest &request, QWidget *parent = nullptr);
    ~KelPlaybackExportDialog() override;

    /// Exports in a new dialog. True if the file is complete; a failure has been reported to the user. If `cancelled`
    /// is not null, it is set to whether the user canceled.
    static bool run(const KelExportRequest &request, QWidget *parent = nullptr, bool *cancelled = nullptr);

    /// The export of this dialog. After exec() it says whether and why the export failed.
    const KelExportPipeline &pipeline() const;

    /// Whether to exit recording mode, by the user's choice or the setting encodeExitRecordAfterEncode. Valid after
    /// exec().
    bool exitRecord() const;

public slots:
    /// Runs the export; returns when the dialog is closed. Accepted if the file is complete.
    int exec() override;

    /// Cancels a running export. Once the file is complete, closes the dialog as accepted.
    void reject() override;

private:
    friend class kel::ExportDialogInternals;

    KelPlaybackExportDialog(const KelExportRequest &request, const KelExportDependencies &dependencies,
                            QWidget *parent);

    class Private;
    std::unique_ptr<Private> d;
};
