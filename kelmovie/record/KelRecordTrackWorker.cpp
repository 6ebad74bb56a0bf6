#include "record/KelRecordTrackWorker.h"

#include "record/KelRecordTrack.h"

KelRecordTrackWorker::KelRecordTrackWorker(KelRecordTrack *track)
    : m_track(track)
{
}

void KelRecordTrackWorker::onFrameTriggered(int frameIndex)
{
    if (m_track)
        m_track->recordFrame(frameIndex);
    emit frameCompleted();
}

void KelRecordTrackWorker::onStartRecording()
{
    if (m_track)
        m_track->startRecording();
    emit operationCompleted();
}

void KelRecordTrackWorker::onPauseRecording()
{
    if (m_track)
        m_track->pauseRecording();
    emit operationCompleted();
}

void KelRecordTrackWorker::onStopRecording(qint64 frameCount, qint64 duration)
{
    if (m_track)
        m_track->stopRecording(frameCount, duration);
    emit operationCompleted();
}

void KelRecordTrackWorker::onCheckpoint(qint64 frameCount)
{
    if (m_track)
        m_track->checkpoint(frameCount);
    emit operationCompleted();
}
