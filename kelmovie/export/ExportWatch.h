#pragma once

#include <KelMovie/KelExportPipeline.h>

#include <QElapsedTimer>

#include <chrono>
#include <functional>

namespace kel
{

/// What stands between an export and its monitor: reports progress, and asks whether to go on.
class ExportWatch
{
public:
    using Stage = KelExportMonitor::Status::Stage;

    /// `monitor` may be null; it is not owned.
    explicit ExportWatch(KelExportMonitor *monitor);

    /// Reports percent that are higher than those before, and nothing else.
    void report(qint64 percent);

    void begin(Stage stage, qint64 units);
    /// So many units of the stage are done. Told to the monitor several times a second.
    void update(qint64 done);

    bool isCancelled();
    /// What isCancelled() answered last.
    bool wasCancelled() const { return m_isCancelled; }

    /// Asks the monitor while `isDone`, which waits for so long at most, is false. False when cancelled.
    bool wait(const std::function<bool(std::chrono::milliseconds limit)> &isDone);

private:
    void tell();

    KelExportMonitor *const m_monitor;
    KelExportMonitor::Status m_status;
    QElapsedTimer m_sinceBegin;
    QElapsedTimer m_sinceTold;
    int m_percent = -1;
    bool m_isCancelled = false;
};

} // namespace kel
