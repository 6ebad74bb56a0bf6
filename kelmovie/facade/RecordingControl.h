#pragma once

#include "facade/KelMultiTrackRecorder.h"

#include <QObject>

#include <memory>

class KelRecordTrackManager;
class KelScreenPreparation;
struct KelScreenPermission;
class KelRecordingDirectory;

namespace kel
{

/// Starts, pauses and stops the recordings of a KelMultiTrackRecorder and reports the failures of their tracks. GUI
/// thread.
class RecordingControl : public QObject
{
    Q_OBJECT

public:
    /// `recorder` becomes the parent of the track managers.
    explicit RecordingControl(KelMultiTrackRecorder *recorder);
    /// Stops a running recording.
    ~RecordingControl() override;

    bool isRecording() const { return m_isRecording; } ///< also while paused
    bool isPaused() const { return m_isPaused; }

    /// Asks the system for what recording `area` needs and keeps it for the next start(). Ends with prepared(),
    /// declined() or failed(), possibly before it returns.
    void prepare(const QRect &area, const KelMultiTrackRecorder::RecordConfig &config);
    /// Withdraws what prepare() asks for, or gives up what it got.
    void cancelPreparation();

    /// Starts a new recording while none is running. On failure returns the reason and removes what it created;
    /// otherwise returns an empty string.
    QString start(const QRect &area, const KelMultiTrackRecorder::RecordConfig &config);
    void resume();
    void pause();
    void stop();

    void setMouseEnabled(bool enabled);
    void setKeyboardEnabled(bool enabled);

    /// The manager of the running or the last recording, null before the first.
    const KelRecordTrackManager *manager() const { return m_manager.get(); }

signals:
    void prepared();
    void declined(const QString &reason);
    void started();
    void stopped();
    void paused();
    void resumed();
    void trackFailed(const QString &track, const QString &problem);
    /// The recording, or one of its tracks, failed.
    void failed(const QString &error);
    /// The running recording has reached KelRecordTrackManager::kMaxFrames and does not grow any more.
    void frameLimitReached();

private:
    void endPreparation(const KelScreenPermission &permission);
    QString createManager(const QRect &area, const KelMultiTrackRecorder::RecordConfig &config);
    void reportFailures();
    void onFrameLimitReached();

    KelMultiTrackRecorder *const m_recorder;
    std::unique_ptr<KelScreenPreparation> m_preparation; // until the next start
    std::unique_ptr<KelRecordingDirectory> m_directory;  // locked until the manager has completed the files
    std::unique_ptr<KelRecordTrackManager> m_manager;
    bool m_isRecording = false;
    bool m_isPaused = false;
};

} // namespace kel
