#include "record/KelRecordTrack.h"

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

void KelRecordTrack::setFailureHandler(const FailureHandler &handler)
{
    QMap<QString, QString> earlier;
    {
        std::lock_guard lock(m_failureMutex);
        m_failureHandler = handler;
        earlier = m_failures;
    }
    for (auto failure = earlier.cbegin(); failure != earlier.cend(); ++failure)
        handler(failure.key(), failure.value());
}

void KelRecordTrack::reportFailure(const QString &track, const QString &problem)
{
    FailureHandler handler;
    {
        std::lock_guard lock(m_failureMutex);
        if (m_failures.contains(track))
            return;
        m_failures.insert(track, problem);
        handler = m_failureHandler;
    }
    if (handler)
        handler(track, problem);
}
