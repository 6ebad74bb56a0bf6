#pragma once

#include <KelMovie/KelExportPipeline.h>

#include <QElapsedTimer>

#include <chrono>
#include <functional>

namespace kel
{

/// Reports the progress of an export to its monitor, and asks it whether to cancel.
class ExportProgress
{
public:
    /// Percent that are reached when a step is done.
    static constexpr int kFramesPercent = 90;
    static constexpr int kVideoPercent = 95;
    static constexpr int kSoundPercent = 99;

    using Stage = KelExportMonitor::Status::Stage;

    /// `monitor` may be null; it is not owned.
    explicit ExportProgress(KelExportMonitor *monitor);

    /// Reports `percent` if it is higher than before.
    void report(qint64 percent);

    /// Starts a stage of `units`.
    void begin(Stage stage, qint64 units);
    /// Sets the number of completed units. Reported to the monitor several times per second.
    void update(qint64 done);

    /// Asks the monitor.
    bool isCancelled();
    /// The last result of isCancelled().
    bool wasCancelled() const { return m_isCancelled; }

    /// Calls `isDone`, which may block for up to `limit`, until it returns true, and reports and asks the monitor in
    /// between. False when cancelled.
    bool wait(const std::function<bool(std::chrono::milliseconds limit)> &isDone);

private:
    void notify();

    KelExportMonitor *const m_monitor;
    KelExportMonitor::Status m_status;
    QElapsedTimer m_sinceBegin;
    QElapsedTimer m_sinceNotified;
    int m_percent = -1;
    bool m_isCancelled = false;
};

} // namespace kel
