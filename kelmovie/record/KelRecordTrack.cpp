#include "record/KelRecordTrack.h"

#include <utility>

KelRecordTrack::KelRecordTrack(const QRect &recordArea, const QString &trackDir, QObject *parent)
    : QObject(parent)
    , m_recordArea(recordArea)
    , m_trackDir(trackDir)
{
}

KelRecordTrack::~KelRecordTrack() = default;

void KelRecordTrack::recordFrame(int) {}

void KelRecordTrack::startRecording() {}

void KelRecordTrack::pauseRecording() {}

void KelRecordTrack::checkpoint(qint64) {}

void KelRecordTrack::setFailureHandler(std::function<void(const QString &)> handler)
{
    QString earlier;
    {
        std::lock_guard lock(m_failureMutex);
        m_failureHandler = handler;
        earlier = m_failure;
    }
    if (!earlier.isEmpty())
        handler(earlier);
}

void KelRecordTrack::reportFailure(const QString &problem)
{
    std::function<void(const QString &)> handler;
    {
        std::lock_guard lock(m_failureMutex);
        if (!m_failure.isEmpty())
            return;
        m_failure = problem;
        handler = m_failureHandler;
    }
    if (handler)
        handler(problem);
}
