#pragma once

#include <QObject>

class KelRecordTrack;

/// Receives the requests of a KelRecordTrackThreadWrap on the track's thread and passes them to the track.
class KelRecordTrackWorker : public QObject
{
    Q_OBJECT

public:
    /// `track` is not owned. If it is null, requests complete without doing anything.
    explicit KelRecordTrackWorker(KelRecordTrack *track);

public slots:
    void onFrameTriggered(int frameIndex);
    void onStartRecording();
    void onPauseRecording();
    void onStopRecording(qint64 frameCount, qint64 duration);
    void onCheckpoint(qint64 frameCount);

signals:
    void frameCompleted();
    void operationCompleted();

private:
    KelRecordTrack *const m_track;
};
