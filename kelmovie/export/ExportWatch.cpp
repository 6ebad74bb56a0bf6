#include "export/ExportWatch.h"

namespace kel
{

namespace
{

constexpr std::chrono::milliseconds kPoll(20);
constexpr int kTellEveryMs = 200;
constexpr int kEstimateAfterMs = 1000; // before that an estimate jumps about

} // namespace

ExportWatch::ExportWatch(KelExportMonitor *monitor)
    : m_monitor(monitor)
{
    begin(Stage::Frames, 0);
}

void ExportWatch::report(qint64 percent)
{
    if (percent <= m_percent)
        return;
    m_percent = int(percent);
    if (m_monitor)
        m_monitor->exportProgress(m_percent);
}

void ExportWatch::begin(Stage stage, qint64 units)
{
    m_status = {};
    m_status.stage = stage;
    m_status.units = units;
    m_sinceBegin.start();
    m_sinceTold.invalidate();
}

void ExportWatch::update(qint64 done)
{
    m_status.done = done;
    tell();
}

void ExportWatch::tell()
{
    if (!m_monitor || (m_sinceTold.isValid() && !m_sinceTold.hasExpired(kTellEveryMs)))
        return;
    m_sinceTold.start();
    m_status.elapsedMs = m_sinceBegin.elapsed();
    if (m_status.done > 0 && m_status.elapsedMs >= kEstimateAfterMs) {
        const double rest = double(m_status.units - m_status.done) / double(m_status.done);
        m_status.leftMs = qint64(double(m_status.elapsedMs) * rest);
    }
    m_monitor->exportStatus(m_status);
}

bool ExportWatch::isCancelled()
{
    m_isCancelled = m_isCancelled || (m_monitor && m_monitor->isExportCancelled());
    return m_isCancelled;
}

bool ExportWatch::wait(const std::function<bool(std::chrono::milliseconds limit)> &isDone)
{
    while (!isDone(kPoll)) {
        tell();
        if (isCancelled())
            return false;
    }
    return true;
}

} // namespace kel
