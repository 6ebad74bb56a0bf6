#include "audio/capture/CaptureParts.h"

#include "logging/Log.h"

#include <QDebug>
#include <QMutexLocker>

#include <utility>

namespace kel
{

namespace
{
constexpr qint64 kFirstSilenceMs = 100;
constexpr int kFinishWaitMs = 1000;
} // namespace

CaptureParts::CaptureParts(const QString &firstPath, qint64 startMs)
    : m_path(firstPath)
    , m_startMs(startMs)
{
}

void CaptureParts::pauseAt(qint64 atMs)
{
    const QMutexLocker lock(&m_requestMutex);
    m_pausedAtMs = atMs;
}

void CaptureParts::resumeAt(qint64 atMs, const QString &path)
{
    const QMutexLocker lock(&m_requestMutex);
    m_requestedSwitches.append({m_pausedAtMs.value_or(atMs), atMs, path});
    m_pausedAtMs.reset();
}

bool CaptureParts::finish()
{
    m_isFinished = true;
    if (!m_fileMutex.tryLock(kFinishWaitMs))
        return false;
    applyRequests();
    if (m_writer)
        m_writer->close();
    m_fileMutex.unlock();
    return true;
}

void CaptureParts::setFormat(const WavHeader &format)
{
    const QMutexLocker lock(&m_fileMutex);
    if (m_isFinished)
        return;
    m_writer.emplace(format);
    openPart();
    applyRequests();
}

void CaptureParts::writePacket(const char *data, qint64 size, qint64 recordedAtMs)
{
    const QMutexLocker lock(&m_fileMutex);
    if (m_isFinished)
        return;
    takeRequests();
    while (m_writer) {
        m_writer->writePacket(data, size, recordedAtMs);
        // A part ends only when all its sound has arrived, even if the recording was resumed before that.
        if (m_switches.isEmpty() || (isWritable() && !m_writer->isComplete()))
            return;
        switchPart();
    }
}

/// Also while paused: ending the part cuts it back to the start of the pause, and if the process dies before that, the
/// duration of the file is the time that passed.
void CaptureParts::writeSilenceTo(qint64 ms)
{
    const QMutexLocker lock(&m_fileMutex);
    if (m_isFinished)
        return;
    applyRequests();
    if (isWritable())
        m_writer->writeSilenceTo(ms);
}

void CaptureParts::updateSizes()
{
    const QMutexLocker lock(&m_fileMutex);
    if (!m_isFinished && m_writer)
        m_writer->updateSizes();
}

bool CaptureParts::isComplete()
{
    const QMutexLocker lock(&m_fileMutex);
    return !isWritable() || m_writer->isComplete();
}

QString CaptureParts::errorString()
{
    const QMutexLocker lock(&m_fileMutex);
    return m_writer ? m_writer->errorString() : QString();
}

void CaptureParts::takeRequests()
{
    {
        const QMutexLocker lock(&m_requestMutex);
        m_switches += std::exchange(m_requestedSwitches, {});
        m_endMs = m_pausedAtMs;
    }
    setEnd();
}

void CaptureParts::applyRequests()
{
    takeRequests();
    while (!m_switches.isEmpty())
        switchPart();
}

/// Ends the current part and continues with the next one.
void CaptureParts::switchPart()
{
    const Switch next = m_switches.takeFirst();
    const qint64 missingMs = endPart(next.previousEndMs);
    m_path = next.path;
    m_startMs = next.startMs - missingMs;
    if (m_writer)
        openPart();
    setEnd();
}

/// Tells the writer where the current part ends, if that is known.
void CaptureParts::setEnd()
{
    const auto endMs = m_switches.isEmpty() ? m_endMs : m_switches.first().previousEndMs;
    if (endMs && isWritable())
        m_writer->setEnd(*endMs);
}

void CaptureParts::openPart()
{
    if (!m_writer->open(m_path, m_startMs)) {
        qCWarning(logAudio) << "无法打开输出文件:" << m_path;
        return;
    }
    m_writer->writeSilenceTo(m_startMs + kFirstSilenceMs);
    m_writer->updateSizes();
}

/// Returns the duration of the part if no file holds it.
qint64 CaptureParts::endPart(qint64 endMs)
{
    if (!isWritable())
        return endMs - m_startMs;
    m_writer->close();
    return 0;
}

} // namespace kel
