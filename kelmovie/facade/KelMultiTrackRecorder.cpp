#include "facade/KelMultiTrackRecorder.h"

#include "config/KelMovieConfig.h"
#include "facade/RecordingControl.h"
#include "facade/RecordingExporter.h"
#include "logging/Log.h"
#include "playback/KelPlaybackTrackManager.h"
#include "record/KelRecordTrackManager.h"

#include <QDebug>

#include <exception>

using namespace kel;

class Q_DECL_HIDDEN KelMultiTrackRecorder::Private
{
public:
    explicit Private(KelMultiTrackRecorder *recorder);

    bool isLoaded();
    bool isComplete(const RecordingExporter::Outcome &outcome, const QString &startFailure);
    void reportError(const QString &error);

    KelMultiTrackRecorder *const q;
    QRect recordArea;
    RecordConfig config;
    std::unique_ptr<KelPlaybackTrackManager> playbackManager;
    RecordingControl recording;
    QString lastError;
};

KelMultiTrackRecorder::Private::Private(KelMultiTrackRecorder *recorder)
    : q(recorder)
    , recording(recorder)
{
    connect(&recording, &RecordingControl::prepared, q, &KelMultiTrackRecorder::recordingPrepared);
    connect(&recording, &RecordingControl::declined, q, &KelMultiTrackRecorder::recordingDeclined);
    connect(&recording, &RecordingControl::started, q, &KelMultiTrackRecorder::recordingStarted);
    connect(&recording, &RecordingControl::stopped, q, &KelMultiTrackRecorder::recordingStopped);
    connect(&recording, &RecordingControl::paused, q, &KelMultiTrackRecorder::recordingPaused);
    connect(&recording, &RecordingControl::resumed, q, &KelMultiTrackRecorder::recordingResumed);
    connect(&recording, &RecordingControl::trackFailed, q, &KelMultiTrackRecorder::trackFailed);
    connect(&recording, &RecordingControl::failed, q, [this](const QString &error) { reportError(error); });
    connect(&recording, &RecordingControl::frameLimitReached, q, [this] {
        reportError(QStringLiteral("The recording was stopped: it has reached the limit of %1 frames")
                        .arg(KelRecordTrackManager::kMaxFrames));
        q->stopRecording();
    });
}

bool KelMultiTrackRecorder::Private::isLoaded()
{
    if (!playbackManager)
        reportError(QStringLiteral("No recording loaded for export"));
    return bool(playbackManager);
}

/// Reports why the export failed, or `startFailure` if it could not even start; a cancelled one is not an error.
bool KelMultiTrackRecorder::Private::isComplete(const RecordingExporter::Outcome &outcome, const QString &startFailure)
{
    using Result = RecordingExporter::Result;
    if (outcome.result == Result::NotStarted)
        reportError(startFailure);
    else if (outcome.result == Result::Failed)
        reportError(QStringLiteral("Export failed: %1").arg(outcome.error));
    return outcome.result == Result::Complete;
}

void KelMultiTrackRecorder::Private::reportError(const QString &error)
{
    lastError = error;
    emit q->recordingError(error);
}

KelMultiTrackRecorder::KelMultiTrackRecorder(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(this))
{
}

KelMultiTrackRecorder::~KelMultiTrackRecorder() = default;

void KelMultiTrackRecorder::setRecordArea(const QRect &area)
{
    d->recordArea = area;
}

QRect KelMultiTrackRecorder::recordArea() const
{
    return d->recordArea;
}

void KelMultiTrackRecorder::setRecordConfig(const RecordConfig &config)
{
    d->config = config;
}

KelMultiTrackRecorder::RecordConfig KelMultiTrackRecorder::recordConfig() const
{
    return d->config;
}

bool KelMultiTrackRecorder::isRecording() const
{
    return d->recording.isRecording();
}

bool KelMultiTrackRecorder::isPaused() const
{
    return d->recording.isPaused();
}

void KelMultiTrackRecorder::prepareRecording()
{
    if (isRecording())
        return;
    if (d->recordArea.isEmpty())
        d->reportError(QStringLiteral("Record area not set"));
    else
        d->recording.prepare(d->recordArea, d->config);
}

void KelMultiTrackRecorder::cancelPreparation()
{
    d->recording.cancelPreparation();
}

bool KelMultiTrackRecorder::startRecording()
{
    if (isRecording()) {
        if (!isPaused())
            return false;
        d->recording.resume();
        return true;
    }
    if (d->recordArea.isEmpty()) {
        d->reportError(QStringLiteral("Record area not set"));
        return false;
    }
    const QString problem = d->recording.start(d->recordArea, d->config);
    if (!problem.isEmpty()) {
        d->reportError(QStringLiteral("Failed to start recording: %1").arg(problem));
        return false;
    }
    return true;
}

void KelMultiTrackRecorder::pauseRecording()
{
    d->recording.pause();
}

void KelMultiTrackRecorder::stopRecording()
{
    qCInfo(logRecord) << "[KelMultiTrackRecorder::stopRecording] Starting to stop recording";
    qCInfo(logRecord) << "[KelMultiTrackRecorder] this pointer:" << static_cast<void *>(this);
    qCInfo(logRecord) << "[KelMultiTrackRecorder] d->isRecording:" << isRecording();
    qCInfo(logRecord) << "[KelMultiTrackRecorder] d->recordManager pointer:"
                      << static_cast<const void *>(d->recording.manager());
    d->recording.stop();
    qCInfo(logRecord) << "[KelMultiTrackRecorder::stopRecording] Completed";
}

void KelMultiTrackRecorder::setMouseRecordingEnabled(bool enabled)
{
    d->recording.setMouseEnabled(enabled);
}

void KelMultiTrackRecorder::setKeyboardRecordingEnabled(bool enabled)
{
    d->recording.setKeyboardEnabled(enabled);
}

bool KelMultiTrackRecorder::loadRecording(const QString &dir)
{
    return loadRecording(dir, KelPlaybackRules());
}

bool KelMultiTrackRecorder::loadRecording(const QString &dir, const KelPlaybackRules &rules)
{
    d->playbackManager.reset();
    try {
        d->playbackManager = std::make_unique<KelPlaybackTrackManager>(
            dir, gKelMovieConfig.recordEnableHardwareAcceleration, rules, this);
    } catch (const std::exception &exception) {
        d->reportError(QStringLiteral("Failed to load recording: %1").arg(QString::fromLocal8Bit(exception.what())));
        return false;
    }
    return true;
}

KelPlaybackTrackManager *KelMultiTrackRecorder::playbackManager() const
{
    return d->playbackManager.get();
}

bool KelMultiTrackRecorder::exportToVideo(const QString &path, int format)
{
    return d->isLoaded() && d->isComplete(RecordingExporter(*d->playbackManager).exportAll(path, format),
                                          QStringLiteral("Failed to start export"));
}

bool KelMultiTrackRecorder::exportToGif(const QString &path, int)
{
    return exportToVideo(path, 1);
}

bool KelMultiTrackRecorder::exportToVideoWithTrim(const QString &path, int format, int trimStart, int trimEnd, int,
                                                  int fps)
{
    return d->isLoaded() &&
           d->isComplete(RecordingExporter(*d->playbackManager).exportRange(path, format, trimStart, trimEnd, fps),
                         QStringLiteral("Failed to start export with audio trim"));
}

QString KelMultiTrackRecorder::lastError() const
{
    return d->lastError;
}
