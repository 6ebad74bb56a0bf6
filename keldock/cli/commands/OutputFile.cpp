#include "cli/commands/OutputFile.h"

#include "files/RenameOver.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

using namespace kel;

OutputFile::OutputFile(const QString &path)
    : m_path(path)
{
    const QFileInfo given(path);
    if (given.isDir()) {
        m_error = QStringLiteral("'%1' is a directory").arg(path);
        return;
    }
    if (given.exists() && !given.isFile()) {
        m_error = QStringLiteral("'%1' is not a regular file").arg(path);
        return;
    }
    if (given.exists())
        m_path = given.canonicalFilePath(); // replaces the target of a link rather than the link
    const QFileInfo target(m_path);
    if (!QFileInfo(target.path()).isDir()) {
        m_error = QStringLiteral("there is no directory '%1'").arg(target.path());
        return;
    }
    const QString temporaryPath =
        QStringLiteral("%1/.keldock-%2.%3")
            .arg(target.path(), QString::number(QCoreApplication::applicationPid()), target.suffix());
    QFile::remove(temporaryPath); // left behind by a killed process with the same id
    QFile probe(temporaryPath);
    if (!probe.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        m_error = QStringLiteral("'%1' cannot be written: %2").arg(path, probe.errorString());
        return;
    }
    probe.remove();
    m_temporaryPath = temporaryPath;
}

OutputFile::~OutputFile()
{
    if (!m_temporaryPath.isEmpty())
        QFile::remove(m_temporaryPath);
}

QString OutputFile::commit()
{
    const QString problem = renameOver(m_temporaryPath, m_path);
    if (!problem.isEmpty())
        return QStringLiteral("'%1' cannot be written: %2").arg(m_path, problem);
    m_temporaryPath.clear();
    return QString();
}
