#include "export/estimate/ExportSizeEstimator.h"

#include "export/ExportCanvas.h"
#include "export/ExportFrameMap.h"
#include "export/estimate/TrialEncode.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QElapsedTimer>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace kel
{

namespace
{

constexpr int kIntervalMs = 2;
constexpr int kSliceMs = 8;         // of work per timer event, unless a single operation takes longer
constexpr int kExcerptStride = 3;   // order of the excerpts: the first few are already spread over the range
constexpr double kModelError = 0.1; // a frame's size also depends on frames beyond the excerpt

// The MP4 encoder's keyframes and sound:
constexpr int kKeyFrameSeconds = 5;
constexpr int kMaxKeyFrameDistance = 250;
constexpr double kSoundBytesPerSecond = 24'000;

struct Plan {
    int excerpts;
    int frames; ///< per excerpt
};

/// MP4 frames get smaller the more frames precede them, so MP4 has fewer and longer excerpts.
Plan planOf(int format)
{
    return format == KelExportRequest::Mp4 ? Plan{4, 40} : Plan{8, 12};
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
    m_excerpts.clear();
    m_current = 0;
    m_request = request;
    const QString dir = request.playbackManager ? request.playbackManager->recordDir() : QString();
    if (dir != m_recordDir)
        m_manager.reset();
    m_recordDir = dir;
    m_timer.start();
}

void ExportSizeEstimator::stop()
{
    m_timer.stop();
    m_file.reset();
    m_manager.reset();
    m_map.reset();
}

PlaybackEngine &ExportSizeEstimator::playback() const
{
    return PlaybackInternals::engine(*m_manager);
}

void ExportSizeEstimator::work()
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (isRunning() && !isBusy() && elapsed.elapsed() < kSliceMs)
        advance();
}

/// Whether another thread is encoding or decoding.
bool ExportSizeEstimator::isBusy() const
{
    return (m_file && m_file->isBusy()) ||
           (m_prefetched >= 0 && !playback().waitForPrefetch(std::chrono::milliseconds(0)));
}

/// Does the next piece of work, which is short.
void ExportSizeEstimator::advance()
{
    if (m_file && !m_file->errorString().isEmpty()) {
        fail(m_file->errorString());
    } else if (!m_map) {
        if (open())
            planExcerpts();
    } else if (!m_file) {
        // First a file of one frame, then one of all frames.
        m_fileFrames = m_excerpts[m_current].keyFrameBytes == 0 ? 1 : m_excerpts[m_current].frames;
        m_nextFrame = 0;
        m_file = std::make_unique<TrialEncode>(m_request, ExportCanvas::outputSize(*m_manager, m_request));
    } else if (m_file->isClosed()) {
        storeSize();
    } else if (m_nextFrame < m_fileFrames) {
        addFrame();
    } else {
        m_file->close(m_fileFrames);
    }
}

bool ExportSizeEstimator::open()
{
    if (!m_manager)
        m_manager = std::make_unique<KelPlaybackTrackManager>(m_recordDir, false);
    m_manager->updateSettings();
    QString problem = m_manager->errorString();
    if (problem.isEmpty() && m_manager->frameSize().isEmpty())
        problem = QStringLiteral("Invalid playback area size");
    if (problem.isEmpty() && (m_request.fps < 1 || !std::isfinite(m_request.speed) || m_request.speed <= 0))
        problem = QStringLiteral("Invalid export speed or frame rate");
    if (!problem.isEmpty())
        fail(problem);
    return problem.isEmpty();
}

void ExportSizeEstimator::planExcerpts()
{
    m_map = std::make_unique<ExportFrameMap>(ExportFrameMap::forExport(*m_manager, m_request));
    playback().beginExport(m_request.speed, m_map->range());
    const qint64 frames = m_map->outputFrames();
    const Plan plan = planOf(m_request.format);
    if (frames <= plan.excerpts * plan.frames) {
        m_excerpts.push_back({0, int(frames), 0, 0});
        return;
    }
    for (int i = 0; i < plan.excerpts; ++i) {
        const int place = i * kExcerptStride % plan.excerpts;
        m_excerpts.push_back({(frames - plan.frames) * place / (plan.excerpts - 1), plan.frames, 0, 0});
    }
}

/// On its first call for a frame it only starts to decode it, so that the GUI thread does not block.
void ExportSizeEstimator::addFrame()
{
    const int frame = m_map->logicFrame(m_excerpts[m_current].first + m_nextFrame);
    if (m_prefetched != frame) {
        m_prefetched = frame;
        playback().prefetch(frame);
        return;
    }
    m_prefetched = -1;
    if (m_nextFrame == 0)
        playback().setFrameAsPlayed(frame);
    else
        playback().setFrameSilently(frame);
    if (m_nextFrame == 0 || m_revision != m_manager->frameRevision())
        encodeFrame();
    m_revision = m_manager->frameRevision();
    ++m_nextFrame;
}

void ExportSizeEstimator::encodeFrame()
{
    ExportCanvas canvas(m_manager->frameSize(), ExportCanvas::outputSize(*m_manager, m_request));
    if (canvas.isValid())
        m_file->add(m_nextFrame, canvas.paint(*m_manager));
    else
        fail(QStringLiteral("Not enough memory for a frame"));
}

void ExportSizeEstimator::storeSize()
{
    Excerpt &excerpt = m_excerpts[m_current];
    if (m_fileFrames == 1)
        excerpt.keyFrameBytes = m_file->bytes();
    excerpt.bytes = m_file->bytes();
    m_file.reset();
    if (m_fileFrames < excerpt.frames)
        return;
    ++m_current;
    if (m_current == m_excerpts.size())
        m_timer.stop();
    report();
}

void ExportSizeEstimator::report()
{
    const bool isWhole = m_excerpts.size() == 1;
    if (m_current < 2 && !isWhole)
        return;
    double sum = 0;
    double sumOfSquares = 0;
    for (std::size_t i = 0; i < m_current; ++i) {
        const double bytes = exportBytes(m_excerpts[i]);
        sum += bytes;
        sumOfSquares += bytes * bytes;
    }
    const auto count = double(m_current);
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

/// Size of all frames of the export if all of it is like `excerpt`.
double ExportSizeEstimator::exportBytes(const Excerpt &excerpt) const
{
    const qint64 frames = m_map->outputFrames();
    if (excerpt.frames == frames)
        return double(excerpt.bytes);
    const int distance = std::min(kKeyFrameSeconds * m_request.fps, kMaxKeyFrameDistance);
    const double keyFrames = m_request.format == KelExportRequest::Mp4 ? std::ceil(double(frames) / distance) : 1;
    const double frameBytes = std::max(0.0, double(excerpt.bytes - excerpt.keyFrameBytes)) / (excerpt.frames - 1);
    return keyFrames * double(excerpt.keyFrameBytes) + (double(frames) - keyFrames) * frameBytes;
}

double ExportSizeEstimator::soundBytes() const
{
    const KelPlaybackVoiceTrack *const voice = playback().voiceTrack();
    if (m_request.format != KelExportRequest::Mp4 || !voice)
        return 0;
    const bool isAudible = voice->audibleSystemAudioGain() > 0 || voice->audibleMicrophoneGain() > 0;
    const double seconds = double(m_map->outputFrames()) / m_request.fps;
    return isAudible ? seconds * kSoundBytesPerSecond : 0;
}

void ExportSizeEstimator::fail(const QString &error)
{
    m_timer.stop();
    m_file.reset();
    emit sigFailed(error);
}

} // namespace kel
