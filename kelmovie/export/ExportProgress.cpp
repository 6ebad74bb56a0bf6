#include "export/ExportProgress.h"

namespace kel
{

namespace
{

constexpr std::chrono::milliseconds kPoll(20);
constexpr int kNotifyIntervalMs = 200;
constexpr int kEstimateAfterMs = 1000; // earlier estimates are unstable

} // namespace

ExportProgress::ExportProgress(KelExportMonitor *monitor)
    : m_monitor(monitor)
{
    begin(Stage::Frames, 0);
}

void ExportProgress::report(qint64 percent)
{
    if (percent <= m_percent)
        return;
    m_percent = int(percent);
    if (m_monitor)
        m_monitor->exportProgress(m_percent);
}

void ExportProgress::begin(Stage stage, qint64 units)
{
    m_status = {};
    m_status.stage = stage;
    m_status.units = units;
    m_sinceBegin.start();
    m_sinceNotified.invalidate();
}

void ExportProgress::update(qint64 done)
{
    m_status.done = done;
    notify();
}

void ExportProgress::notify()
{
    if (!m_monitor || (m_sinceNotified.isValid() && !m_sinceNotified.hasExpired(kNotifyIntervalMs)))
        return;
    m_sinceNotified.start();
    m_status.elapsedMs = m_sinceBegin.elapsed();
    if (m_status.done > 0 && m_status.elapsedMs >= kEstimateAfterMs) {
        const double rest = double(m_status.units - m_status.done) / double(m_status.done);
        m_status.remainingMs = qint64(double(m_status.elapsedMs) * rest);
    }
    m_monitor->exportStatus(m_status);
}

bool ExportProgress::isCancelled()
{
    m_isCancelled = m_isCancelled || (m_monitor && m_monitor->isExportCancelled());
    return m_isCancelled;
}

bool ExportProgress::wait(const std::function<bool(std::chrono::milliseconds limit)> &isDone)
{
    while (!isDone(kPoll)) {
        notify();
        if (isCancelled())
            return false;
    }
    return true;
}

} // namespace kel
