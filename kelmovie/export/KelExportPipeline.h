#pragma once

#include <KelMovie/KelExportRequest.h>
#include <KelMovie/KelMovieGlobal.h>

#include <QString>

#include <memory>

struct KelExportDependencies;

namespace kel
{
class ExportInternals;
}

/// Observes an export and can cancel it. All functions are called on the thread that runs the export. They may process
/// events, and may throw: run() then fails.
class KELMOVIE_EXPORT KelExportMonitor
{
public:
    /// What the export is doing.
    struct Status {
        /// The steps of an export, in their order.
        enum class Stage {
            Frames,    ///< composing and encoding; units are frames of the output
            Finishing, ///< the encoder completes the file; units are frames of the output
            Sound,     ///< the sound is being added; units are thousandths
            Saving,    ///< the file is being moved to its destination; units are bytes
        };
        Stage stage = Stage::Frames; ///< the current step
        qint64 done = 0;             ///< units done, 0 to `units`
        qint64 units = 0;            ///< size of the stage
        qint64 elapsedMs = 0;        ///< in this stage
        qint64 remainingMs = -1;     ///< in this stage, estimated; -1 while unknown
    };

    virtual ~KelExportMonitor();

    /// 0 to 100, never decreasing: up to 90 while frames are composed, 100 only once the file is complete.
    virtual void exportProgress(int percent) = 0;

    /// Several times per second, for feedback during a long export, in which a percent may take minutes.
    virtual void exportStatus(const Status &) {}

    /// Called at least once per frame and several times per second otherwise. Returning true cancels the export at
    /// once.
    virtual bool isExportCancelled() = 0;
};

/// Exports a loaded recording into one file. Runs on the GUI thread and blocks until the file is complete, or the
/// export has failed or been cancelled. The playback manager is paused, and is back at its frame afterwards.
///
/// The output file appears when it is complete; an existing file is replaced atomically. Until then it is made in a
/// hidden directory beside it, ".kel_export_…", of which the next export deletes what a killed one left. If an
/// animation cannot be completed, for example on a full disk, its first part is kept beside it as
/// "NAME.incomplete.SUFFIX".
class KELMOVIE_EXPORT KelExportPipeline
{
public:
    /// `monitor` may be null; it is not owned and must outlive this.
    explicit KelExportPipeline(const KelExportRequest &request, KelExportMonitor *monitor = nullptr);
    ~KelExportPipeline();
    KelExportPipeline(const KelExportPipeline &) = delete;
    KelExportPipeline &operator=(const KelExportPipeline &) = delete;

    /// Runs the export; may be called once. False on failure (errorString() is set) and when cancelled (errorString()
    /// is empty). Throws nothing.
    bool run();

    /// Why run() failed, in English, with all known details.
    QString errorString() const;

    /// Defects of a complete file, in English; empty when there are none.
    QString warningString() const;

    /// The step at which the export failed.
    enum class Failure {
        None,      ///< it did not: it is complete or was cancelled
        Video,     ///< while the frames were encoded
        Sound,     ///< while the sound was added or the file was moved to its destination
        Exception, ///< the monitor threw
        Start,     ///< before the first frame was encoded
    };
    Failure failure() const; ///< the step at which run() failed

private:
    friend class kel::ExportInternals;

    KelExportPipeline(const KelExportRequest &request, KelExportMonitor *monitor,
                      const KelExportDependencies &dependencies);

    class Private;
    std::unique_ptr<Private> d;
};
