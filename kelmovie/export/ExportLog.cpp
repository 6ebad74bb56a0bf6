#include "export/ExportLog.h"

#include "export/ExportProgress.h"
#include "logging/Log.h"

namespace kel
{

ExportLog::ExportLog(const ExportProgress &progress)
    : m_progress(progress)
{
}

bool ExportLog::fail(const QString &text, const QString &detail)
{
    if (m_progress.wasCancelled())
        return false;
    qCWarning(logExport).noquote() << text;
    m_error = text;
    if (!detail.isEmpty()) {
        qCWarning(logExport).noquote() << "[KelExportPipeline]" << detail;
        m_error += QLatin1String(": ") + detail;
    }
    return false;
}

void ExportLog::warn(const QString &text)
{
    qCWarning(logExport).noquote() << "[KelExportPipeline]" << text;
    m_warnings.append(text);
}

} // namespace kel
