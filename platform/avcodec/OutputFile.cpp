#include "avcodec/OutputFile.h"

#include "files/PrivateFile.h"
#include "files/RenameOver.h"

namespace av
{

bool OutputFile::open(const QString &path, Access access)
{
    if (access == Access::Private)
        m_file = std::make_unique<kel::PrivateFile>(path);
    else
        m_file = std::make_unique<QFile>(path);
    if (m_file->open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        return true;
    return fail(QStringLiteral("Cannot create %1: %2").arg(path, m_file->errorString()));
}

bool OutputFile::write(const QByteArray &bytes)
{
    if (!put(bytes))
        return false;
    m_size += bytes.size();
    return true;
}

bool OutputFile::overwrite(qint64 position, const QByteArray &bytes)
{
    if (!m_error.isEmpty())
        return false;
    if (!m_file->seek(position) || !put(bytes) || !m_file->seek(m_size))
        return fail(QStringLiteral("Cannot write %1: %2").arg(path(), m_file->errorString()));
    return true;
}

bool OutputFile::truncate(qint64 size)
{
    m_error.clear();
    if (!m_file->resize(size) || !m_file->seek(size))
        return fail(m_file->errorString());
    m_size = size;
    return true;
}

bool OutputFile::replaceWith(OutputFile &other)
{
    m_file->close();
    other.m_file->close();
    const QString problem = kel::renameOver(other.path(), path());
    if (problem.isNull())
        m_size = other.m_size;
    if (!m_file->open(QIODevice::ReadWrite | QIODevice::Unbuffered) || !m_file->seek(m_size))
        return fail(m_file->errorString());
    return problem.isNull() || fail(problem);
}

void OutputFile::remove()
{
    m_file->close();
    QFile::remove(path());
}

bool OutputFile::fail(const QString &reason)
{
    if (m_error.isEmpty())
        m_error = reason;
    return false;
}

bool OutputFile::put(const QByteArray &bytes)
{
    if (!m_error.isEmpty())
        return false;
    // On a full disk the first write may be partial; only the next one fails with an error.
    qint64 done = 0;
    while (done < bytes.size()) {
        const qint64 written = m_file->write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0)
            return fail(QStringLiteral("Cannot write %1: %2").arg(path(), m_file->errorString()));
        done += written;
    }
    return true;
}

} // namespace av
