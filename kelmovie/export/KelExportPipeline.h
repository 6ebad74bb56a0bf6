#pragma once

#include <KelMovie/KelExportRequest.h>
#include <KelMovie/KelMovieGlobal.h>

#include <QString>

#include <memory>

struct KelExportSeams;

/// Whoever watches an export: a dialog, a command line, a test. Called on the thread that runs the export.
class KELMOVIE_EXPORT KelExportMonitor
{
public:
    /// What the export is doing just now.
    struct Status {
        enum class Stage {
            Frames,    ///< composing and encoding; units are frames of the output
            Finishing, ///< the encoder works off what it has been given; frames
            Sound,     ///< the sound is being added; thousandths
            Placing,   ///< the file is being put in its place; bytes
        };
        Stage stage = Stage::Frames;
        qint64 done = 0;
        qint64 units = 0;
        qint64 elapsedMs = 0; ///< in this stage
        qint64 leftMs = -1;   ///< in this stage, an estimate; -1: none yet
    };

    virtual ~KelExportMonitor();

    /// 0 to 100, never falling; 100 only once the file is complete. Up to 90 while frames are composed.
    virtual void exportProgress(int percent) = 0;

    /// Several times a second, whatever takes long: of a long export, a percent may last for minutes.
    virtual void exportStatus(const Status &) {}

    /// Asked at least between any two frames and several times a second otherwise; true ends the export at once.
    virtual bool isExportCancelled() = 0;
};

/// Turns a loaded recording into one output file. Runs on the GUI thread and returns when the file is complete or given
/// up. The playback manager is paused and is back at its frame afterwards.
///
/// The output appears when it is whole; an existing file is replaced in one step. Where an animation cannot be
/// completed, such as on a full disk, its first part is kept beside it as "NAME.incomplete.SUFFIX".
class KELMOVIE_EXPORT KelExportPipeline
{
public:
    /// `monitor` may be null; it is not owned.
    explicit KelExportPipeline(const KelExportRequest &request, KelExportMonitor *monitor = nullptr);
    /// The same with other encoders.
    KelExportPipeline(const KelExportRequest &request, KelExportMonitor *monitor, const KelExportSeams &seams);
    ~KelExportPipeline();
    KelExportPipeline(const KelExportPipeline &) = delete;
    KelExportPipeline &operator=(const KelExportPipeline &) = delete;

    /// Once. False on failure (errorString() tells) and on cancel (errorString() is empty).
    bool run();

    /// What went wrong, in English, with all that is known.
    QString errorString() const;

    /// What a complete file lacks, in English; empty when it lacks nothing.
    QString warningString() const;

    /// Where the export came to an end before its time.
    enum class Failure { None, Video, Sound, Exception };
    Failure failure() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};
