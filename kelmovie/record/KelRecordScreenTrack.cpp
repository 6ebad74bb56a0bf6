#include "record/KelRecordScreenTrack.h"

#include "geometry/ScreenGeometry.h"
#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"
#include "screen/KelScreenManager.h"

#include <QDebug>
#include <QFileInfo>
#include <QThread>

#include <utility>

namespace
{
constexpr int kStreamFps = 30;

QString videoPath(const QString &trackDir)
{
    return KelRecordingFiles::path(trackDir, KelRecordingFiles::kVideo);
}

KelAsyncEncoder::Params encoderParams(const QSize &frameSize, const QString &trackDir, int quality)
{
    KelAsyncEncoder::Params params;
    params.frameSize = frameSize;
    params.inputFormat = QImage::Format_ARGB32_Premultiplied;
    params.path = videoPath(trackDir);
    params.fps = kStreamFps;
    params.quality = quality;
    params.threads = 0;
    params.keyframeInterval = 10;
    params.keyframeIntervalMin = 10;
    params.queueCapacity = 4;
    return params;
}

/// Makes a protected function of QThread accessible.
struct TerminationSwitch : QThread {
    using QThread::setTerminationEnabled;
};
} // namespace

KelRecordScreenTrack::KelRecordScreenTrack(const QRect &recordArea, const QString &trackDir, int, int quality,
                                           bool withPointer)
    : KelRecordScreenTrack(
          recordArea, trackDir, quality,
          std::unique_ptr<KelScreenStreamer>(
              KelScreenManager::instance()->createScreenStreamer(recordArea, withPointer)),
          [](const KelAsyncEncoder::Params &params) { return std::make_unique<KelAsyncEncoder>(params); })
{
}

KelRecordScreenTrack::KelRecordScreenTrack(const QRect &recordArea, const QString &trackDir, int quality,
                                           std::unique_ptr<KelScreenStreamer> streamer,
                                           const EncoderFactory &createEncoder)
    : KelRecordTrack(recordArea, trackDir)
    , m_frameSize(kel::physicalRect(recordArea).size())
    , m_videoPath(videoPath(trackDir))
    , m_indexFile(KelRecordingFiles::path(trackDir, KelRecordingFiles::kFrameIndex))
    , m_frame(recordArea.size(), QImage::Format_ARGB32_Premultiplied)
    , m_streamer(std::move(streamer))
    , m_encoder(createEncoder(encoderParams(m_frameSize, trackDir, quality)))
{
    setObjectName(KelTrackNames::kScreen);
    reportStreamerFailure();
    if (m_encoder) {
        m_encoder->setErrorHandler([this](const QString &problem) { reportFailure(objectName(), problem); });
    }
}

KelRecordScreenTrack::~KelRecordScreenTrack()
{
    releaseResources();
}

void KelRecordScreenTrack::recordFrame(int frameIndex)
{
    if (!m_streamer)
        return;
    if (!m_streamer->hasFrameChanged()) {
        reportStreamerFailure();
        return;
    }
    if (m_encoder && m_encoder->isBusy())
        return;
    if (!m_streamer->captureTo(m_frame)) {
        reportStreamerFailure();
        return;
    }
    if (!m_encoder)
        return;

    if (m_frame.size() != m_frameSize) {
        qCWarning(kel::logRecord) << "[Performance Warning] Unexpected frame size mismatch:" << m_frame.size()
                                  << "expected:" << m_frameSize;
        m_frame = m_frame.scaled(m_frameSize, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    }
    padTo(frameIndex);
    const int expected = m_encodedCount;
    const int actual = m_encoder->addFrame(expected, m_frame);
    if (actual != expected)
        qCWarning(kel::logRecord) << "Encoder returned unexpected frame index:" << actual << "Expected:" << expected;
    m_frameIndexes.push_back(expected);
    ++m_encodedCount;
}

void KelRecordScreenTrack::stopRecording(qint64 frameCount, qint64)
{
    if (!m_streamer) // released, so the files are complete
        return;
    // Keeps the thread from being terminated while a slow disk delays completing the files.
    TerminationSwitch::setTerminationEnabled(false);
    finishFiles(frameCount);
    if (m_streamer->isStalled())
        reportFailure(objectName(), QStringLiteral("the screen does not respond, so its last changes are missing"));
    TerminationSwitch::setTerminationEnabled(true);
}

void KelRecordScreenTrack::finishFiles(qint64 frameCount)
{
    padTo(frameCount);
    if (!m_indexFile.open()) {
        qCCritical(kel::logRecord) << "Failed to open frame index file for writing:" << m_indexFile.path();
        reportIndexFailure();
    } else if (!m_indexFile.update(m_frameIndexes)) {
        qCCritical(kel::logRecord) << "Failed to write frame index file:" << m_indexFile.path();
        reportIndexFailure();
    }
    m_indexFile.close();

    if (!m_encoder)
        return;
    m_encoder->waitForClosed();
    m_encoder.reset();
    const QFileInfo video(m_videoPath);
    if (!video.exists() || video.size() == 0) {
        qCCritical(kel::logRecord) << "Failed to generate video file:" << m_videoPath;
        reportFailure(objectName(), QStringLiteral("no video was recorded in %1").arg(m_videoPath));
    }
}

void KelRecordScreenTrack::checkpoint(qint64 frameCount)
{
    if (!m_streamer)
        return;
    padTo(frameCount);
    if (!m_indexFile.update(m_frameIndexes))
        reportIndexFailure();
}

void KelRecordScreenTrack::releaseResources()
{
    m_frame = QImage();
    m_frameIndexes.clear();
    m_frameIndexes.shrink_to_fit();
    m_streamer.reset();
    if (m_encoder)
        m_encoder->waitForClosed();
    m_encoder.reset();
}

/// Logic frames without a new video frame show the previous one.
void KelRecordScreenTrack::padTo(qint64 frameCount)
{
    if (frameCount > qint64(m_frameIndexes.size()))
        m_frameIndexes.resize(std::size_t(frameCount), m_frameIndexes.empty() ? -1 : m_frameIndexes.back());
}

void KelRecordScreenTrack::reportStreamerFailure()
{
    const QString problem = m_streamer->errorString();
    if (!problem.isEmpty())
        reportFailure(objectName(), problem);
}

void KelRecordScreenTrack::reportIndexFailure()
{
    reportFailure(objectName(),
                  QStringLiteral("cannot write %1: %2").arg(m_indexFile.path(), m_indexFile.errorString()));
}
