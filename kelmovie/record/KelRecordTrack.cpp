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
    QMap<QString, QString> earlier;
    {
        std::lock_guard lock(m_failureMutex);
        m_failureHandler = handler;
        earlier = m_failures;
    }
    for (const QString &failure : qAsConst(earlier))
        handler(failure);
}

void KelRecordTrack::reportFailure(const QString &source, const QString &problem)
{
    const QString failure = source + QStringLiteral(": ") + problem;
    std::function<void(const QString &)> handler;
    {
        std::lock_guard lock(m_failureMutex);
        if (m_failures.contains(source))
            return;
        m_failures.insert(source, failure);
        handler = m_failureHandler;
    }
    if (handler)
        handler(failure);
}
