#pragma once

#include <QString>
#include <QStringList>

namespace kel
{

class ExportProgress;

/// Collects what goes wrong in one export, and writes it to the log.
class ExportLog
{
public:
    /// `progress` must outlive this.
    explicit ExportLog(const ExportProgress &progress);

    /// Stores the reason of a failure, unless the export has been cancelled. Always returns false.
    bool fail(const QString &text, const QString &detail = QString());
    /// Adds to the error.
    void addDetail(const QString &text) { m_error += text; }
    /// A defect of a file that is complete otherwise.
    void warn(const QString &text);

    QString error() const { return m_error; }
    QStringList warnings() const { return m_warnings; }

private:
    const ExportProgress &m_progress;
    QString m_error;
    QStringList m_warnings;
};

} // namespace kel
