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
    virtual ~KelExportMonitor();

    /// 0 to 100, never falling; 100 only once the file is complete.
    virtual void exportProgress(int percent) = 0;

    /// Asked at least between any two frames and several times a second while the file is being finished; true ends the
    /// export.
    virtual bool isExportCancelled() = 0;
};

/// Turns a loaded recording into one output file. Runs on the GUI thread and returns when the file is complete or given
/// up. The playback manager is paused and is back at its frame afterwards.
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
