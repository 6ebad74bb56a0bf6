#include "export/ExportSizeEstimator.h"

#include "export/ExportCanvas.h"
#include "export/ExportFrameMap.h"
#include "export/SampleFile.h"
#include "playback/KelPlaybackTrackManager.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"

#include <QElapsedTimer>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace kel
{

namespace
{

constexpr int kIntervalMs = 2;
constexpr int kBusyMs = 8;          // at a time, besides a step that takes longer
constexpr int kSampleStride = 3;    // in which they are taken, so that a few are spread over the range already
constexpr double kModelError = 0.1; // what an encoder does with a frame also depends on what comes much later

// Of MP4.
constexpr int kFormatMp4 = 0;
constexpr int kKeyFrameSeconds = 5;
constexpr int kMaxKeyFrameDistance = 250;
constexpr double kSoundBytesPerSecond = 24'000;

struct Plan {
    int samples;
    int frames; ///< of a sample
};

/// Frames of MP4 become cheaper the more were encoded before, so fewer samples are longer.
Plan planOf(int format)
{
    return format == kFormatMp4 ? Plan{4, 40} : Plan{8, 12};
}

} // namespace

ExportSizeEstimator::ExportSizeEstimator(QObject *parent)
    : QObject(parent)
{
    m_timer.setInterval(kIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &ExportSizeEstimator::work);
}

ExportSizeEstimator::~ExportSizeEstimator() = default;

void ExportSizeEstimator::start(const KelExportRequest &request)
{
    m_file.reset();
    m_map.reset();
    m_prefetched = -1;
    m_samples.clear();
    m_sample = 0;
    m_request = request;
    const QString dir = request.playbackManager ? request.playbackManager->recordDir() : QString();
    if (dir != m_recordDir)
        m_playback.reset();
    m_recordDir = dir;
    m_timer.start();
}

void ExportSizeEstimator::stop()
{
    m_timer.stop();
    m_file.reset();
    m_playback.reset();
    m_map.reset();
}

void ExportSizeEstimator::work()
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (isRunning() && !isWaiting() && elapsed.elapsed() < kBusyMs)
        step();
}

/// For what other threads do.
bool ExportSizeEstimator::isWaiting() const
{
    return (m_file && m_file->isBusy()) ||
           (m_prefetched >= 0 && !m_playback->waitForPrefetch(std::chrono::milliseconds(0)));
}

/// Does one thing that takes a moment.
void ExportSizeEstimator::step()
{
    if (m_file && !m_file->errorString().isEmpty()) {
        fail(m_file->errorString());
    } else if (!m_map) {
        if (open())
            planSamples();
    } else if (!m_file) {
        // First a file of one frame, then one of all.
        m_fileFrames = m_samples[m_sample].keyBytes == 0 ? 1 : m_samples[m_sample].frames;
        m_nextFrame = 0;
        m_file = std::make_unique<SampleFile>(m_request, outputSize());
    } else if (m_file->isClosed()) {
        takeBytes();
    } else if (m_nextFrame < m_fileFrames) {
        addPicture();
    } else {
        m_file->close(m_fileFrames);
    }
}

bool ExportSizeEstimator::open()
{
    if (!m_playback)
        m_playback = std::make_unique<KelPlaybackTrackManager>(m_recordDir, false);
    m_playback->updateSettings();
    QString problem = m_playback->errorString();
    if (problem.isEmpty() && m_playback->pictureSize().isEmpty())
        problem = QStringLiteral("Invalid playback area size");
    if (problem.isEmpty() && (m_request.fps < 1 || !std::isfinite(m_request.speed) || m_request.speed <= 0))
        problem = QStringLiteral("Invalid export speed or frame rate");
    if (!problem.isEmpty())
        fail(problem);
    return problem.isEmpty();
}

void ExportSizeEstimator::planSamples()
{
    m_map = std::make_unique<ExportFrameMap>(
        ExportFrameMap::Recording{m_playback->totalFrames(), m_playback->fps(), m_playback->durationMs()},
        ExportFrameMap::Output{m_request.fps, m_request.speed, m_request.trimStartMs, m_request.trimEndMs,
                               m_request.trimsLongRecordings});
    m_playback->beginExport(m_request.speed, m_map->isRange() ? m_map->firstFrame() : -1, m_map->lastFrame());
    const qint64 frames = m_map->outputFrames();
    const Plan plan = planOf(m_request.format);
    if (frames <= plan.samples * plan.frames) {
        m_samples.push_back({0, int(frames), 0, 0});
        return;
    }
    for (int i = 0; i < plan.samples; ++i) {
        const int place = i * kSampleStride % plan.samples;
        m_samples.push_back({(frames - plan.frames) * place / (plan.samples - 1), plan.frames, 0, 0});
    }
}

/// Asks for the frame's video first, so that nobody waits while it is being decoded.
void ExportSizeEstimator::addPicture()
{
    const int frame = m_map->logicFrame(m_samples[m_sample].first + m_nextFrame);
    if (m_prefetched != frame) {
        m_prefetched = frame;
        m_playback->prefetch(frame);
        return;
    }
    m_prefetched = -1;
    m_nextFrame == 0 ? m_playback->setFrameAsPlayed(frame) : m_playback->setFrameSilently(frame);
    if (m_nextFrame == 0 || m_revision != m_playback->pictureRevision())
        encodePicture();
    m_revision = m_playback->pictureRevision();
    ++m_nextFrame;
}

void ExportSizeEstimator::encodePicture()
{
    ExportCanvas canvas(m_playback->pictureSize(), outputSize());
    if (canvas.isValid())
        m_file->add(m_nextFrame, canvas.paint(*m_playback));
    else
        fail(QStringLiteral("Not enough memory for the picture"));
}

QSize ExportSizeEstimator::outputSize() const
{
    return m_request.size.isEmpty() ? m_playback->pictureSize() : m_request.size;
}

void ExportSizeEstimator::takeBytes()
{
    Sample &sample = m_samples[m_sample];
    if (m_fileFrames == 1)
        sample.keyBytes = m_file->bytes();
    sample.bytes = m_file->bytes();
    m_file.reset();
    if (m_fileFrames < sample.frames)
        return;
    ++m_sample;
    if (m_sample == m_samples.size())
        m_timer.stop();
    report();
}

void ExportSizeEstimator::report()
{
    const bool isWhole = m_samples.size() == 1;
    if (m_sample < 2 && !isWhole)
        return;
    double sum = 0;
    double sumOfSquares = 0;
    for (std::size_t i = 0; i < m_sample; ++i) {
        const double bytes = exportBytes(m_samples[i]);
        sum += bytes;
        sumOfSquares += bytes * bytes;
    }
    const auto count = double(m_sample);
    const double mean = sum / count;
    Estimate estimate;
    estimate.bytes = qint64(mean + soundBytes());
    estimate.isFinal = !isRunning();
    if (!isWhole) {
        const double variance = std::max(0.0, sumOfSquares / count - mean * mean) / (count - 1);
        const double deviation = 2 * std::sqrt(variance) / double(estimate.bytes);
        estimate.error = std::hypot(deviation, kModelError);
    }
    emit sigEstimated(estimate);
}

/// As large as the export's pictures are if all of it is like the sample.
double ExportSizeEstimator::exportBytes(const Sample &sample) const
{
    const qint64 frames = m_map->outputFrames();
    if (sample.frames == frames)
        return double(sample.bytes);
    const int distance = std::min(kKeyFrameSeconds * m_request.fps, kMaxKeyFrameDistance);
    const double keyFrames = m_request.format == kFormatMp4 ? std::ceil(double(frames) / distance) : 1;
    const double frameBytes = std::max(0.0, double(sample.bytes - sample.keyBytes)) / (sample.frames - 1);
    return keyFrames * double(sample.keyBytes) + (double(frames) - keyFrames) * frameBytes;
}

double ExportSizeEstimator::soundBytes() const
{
    const KelPlaybackVoiceTrack *const voice = m_playback->voiceTrack();
    if (m_request.format != kFormatMp4 || !voice)
        return 0;
    const bool isSystemHeard = voice->hasSystemAudio() && voice->isSystemAudioEnabled() &&
                               !voice->isSystemAudioMuted() && voice->systemAudioVolume() > 0;
    const bool isMicrophoneHeard = voice->hasMicrophone() && voice->isMicrophoneEnabled() &&
                                   !voice->isMicrophoneMuted() && voice->microphoneVolume() > 0;
    const double seconds = double(m_map->outputFrames()) / m_request.fps;
    return isSystemHeard || isMicrophoneHeard ? seconds * kSoundBytesPerSecond : 0;
}

void ExportSizeEstimator::fail(const QString &error)
{
    m_timer.stop();
    m_file.reset();
    emit sigFailed(error);
}

} // namespace kel
