#include "playback/tracks/KelPlaybackScreenTrack.h"

#include "avcodec/KelAVCodecDecoder.h"
#include "avcodec/decode/h264Decoder.h"
#include "logging/Log.h"
#include "recording/FrameIndexReader.h"
#include "recording/KelRecordingFiles.h"
#include "recording/RecordingFile.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPaintDevice>
#include <QPainter>

#include <algorithm>
#include <numeric>

using namespace kel;

KelPlaybackScreenTrack::KelPlaybackScreenTrack(double devicePixelRatio, const QString &directory,
                                               bool preferHardwareDecode, const KelDecoderFactory &decoders,
                                               KelPlaybackTrackManager *manager)
    : KelPlaybackTrack(directory, manager)
    , m_decoders(decoders)
    , m_devicePixelRatio(devicePixelRatio)
    , m_preferHardwareDecode(preferHardwareDecode)
{
    setName(QStringLiteral("ScreenTrack"));
    m_isIndexed = readFrameIndex(directory, m_frameIndexes);
    if (!m_isIndexed)
        qCWarning(logPlayback) << "Failed to load frame indexes, will try to create default mapping";
    if (!chooseVideo())
        return;
    m_decoder = openDecoder();
    if (!m_decoder)
        return;
    m_videoSizePx = m_decoder->getFrameSize();
    m_videoFrameCount = m_decoder->getFrameCount();
    if (m_videoFrameCount <= 0) {
        setErrorString(QStringLiteral("Invalid frame count from decoder: %1").arg(m_videoFrameCount));
        qCCritical(logPlayback).noquote() << errorString();
        m_decoder.reset();
        return;
    }
    if (m_frameIndexes.empty()) {
        qCWarning(logPlayback) << "Creating default 1:1 frame mapping for" << m_videoFrameCount << "frames";
        m_frameIndexes.resize(m_videoFrameCount);
        std::iota(m_frameIndexes.begin(), m_frameIndexes.end(), 0);
    }
}

KelPlaybackScreenTrack::~KelPlaybackScreenTrack()
{
    releaseDecoder();
}

void KelPlaybackScreenTrack::appendUnindexedFrames()
{
    for (int frame = std::max(-1, m_frameIndexes.back()) + 1; frame < m_videoFrameCount; ++frame)
        m_frameIndexes.push_back(frame);
}

bool KelPlaybackScreenTrack::chooseVideo()
{
    QString problem;
    for (const QLatin1String name : {KelRecordingFiles::kMkvVideo, KelRecordingFiles::kVideo}) {
        const QString path = KelRecordingFiles::path(directory(), name);
        if (!QFileInfo::exists(path))
            continue;
        QFile file;
        problem = openTrackFile(&file, directory(), name);
        if (problem.isEmpty()) {
            m_videoPath = path;
            return true;
        }
    }
    if (problem.isEmpty())
        setErrorString(QLatin1String("Video file not found. Searched for: ") +
                       KelRecordingFiles::path(directory(), KelRecordingFiles::kMkvVideo) + QLatin1String(" and ") +
                       KelRecordingFiles::path(directory(), KelRecordingFiles::kVideo));
    else
        setErrorString(QLatin1String("Cannot open the video: ") + problem);
    qCCritical(logPlayback).noquote() << errorString();
    return false;
}

bool KelPlaybackScreenTrack::isMatroska() const
{
    return m_videoPath.endsWith(QLatin1String(".mkv"), Qt::CaseInsensitive);
}

/// Null if FFV1 is not supported or the video could not be opened with it.
KelPlaybackScreenTrack::DecoderPointer KelPlaybackScreenTrack::openFfv1() const
{
    DecoderPointer decoder;
    if (m_decoders.isFfv1Supported())
        decoder = m_decoders.createFfv1(m_videoPath);
    if (decoder && !decoder->isValid())
        decoder.reset();
    return decoder;
}

KelPlaybackScreenTrack::DecoderPointer KelPlaybackScreenTrack::openDecoder()
{
    if (isMatroska()) {
        if (DecoderPointer decoder = openFfv1())
            return decoder;
        qCWarning(logPlayback) << "FFV1 decoder failed, falling back to H264";
    }
    if (!m_decoders.isH264Supported()) {
        setErrorString(QStringLiteral("H264 decoder not supported on this system"));
        qCCritical(logPlayback).noquote() << errorString();
        return nullptr;
    }
    DecoderPointer decoder =
        m_decoders.createH264(m_videoPath, h264Decoder::PreferH264DecodeParams(m_preferHardwareDecode));
    if (!decoder || !decoder->isValid()) {
        setErrorString(QStringLiteral("Failed to create H264 decoder or decoder is invalid"));
        qCCritical(logPlayback).noquote() << errorString();
        return nullptr;
    }
    return decoder;
}

bool KelPlaybackScreenTrack::recreateDecoder()
{
    closeDecoder();
    if (isMatroska()) {
        m_decoder = openFfv1();
        if (m_decoder) {
            resetState();
            return true;
        }
        qCWarning(logPlayback) << "FFV1 decoder reinitialization failed, falling back to H264";
    }
    if (!m_decoders.isH264Supported()) {
        setErrorString(QStringLiteral("H264 decoder not supported on this system"));
        qCCritical(logPlayback).noquote() << errorString();
        return false;
    }
    const H264DecodeParams software{QStringLiteral("h264"), QString()};
    for (const H264DecodeParams &params : {h264Decoder::PreferH264DecodeParams(m_preferHardwareDecode), software}) {
        m_decoder = m_decoders.createH264(m_videoPath, params);
        if (m_decoder && m_decoder->isValid()) {
            resetState();
            return true;
        }
    }
    m_decoder.reset();
    setErrorString(QStringLiteral("Failed to reinitialize H264 decoder with both hardware and software options"));
    qCCritical(logPlayback).noquote() << errorString();
    return false;
}

void KelPlaybackScreenTrack::resetState()
{
    m_hasFrame = false;
    m_currentLogicFrame = -1;
    m_lastVideoFrame = -1;
}

void KelPlaybackScreenTrack::closeDecoder()
{
    m_prefetched = {}; // waits for the thread
    if (m_decoder)
        m_decoder->close();
    m_decoder.reset();
}

int KelPlaybackScreenTrack::videoFrameAt(int frame) const
{
    const int wanted = m_frameIndexes.empty() ? frame : m_frameIndexes[std::clamp(frame, 0, logicFrameCount() - 1)];
    return std::clamp(wanted, 0, m_videoFrameCount - 1);
}

void KelPlaybackScreenTrack::prefetch(int frame)
{
    if (!m_decoder || !m_decoder->isValid() || m_prefetched.valid())
        return;
    const int videoFrame = videoFrameAt(frame);
    if (videoFrame == m_keptVideoFrame || (m_hasFrame && videoFrame == m_lastVideoFrame))
        return;
    m_prefetchedVideoFrame = videoFrame;
    m_prefetched = std::async(std::launch::async,
                              [decoder = m_decoder.get(), videoFrame] { return decoder->decodeFrame(videoFrame); });
}

bool KelPlaybackScreenTrack::waitForPrefetch(std::chrono::milliseconds limit) const
{
    return !m_prefetched.valid() || m_prefetched.wait_for(limit) == std::future_status::ready;
}

/// The decoder handles one frame at a time: a running prefetch has to finish first, even of another frame.
QImage KelPlaybackScreenTrack::decode(int videoFrame)
{
    if (m_prefetched.valid()) {
        QImage image = m_prefetched.get();
        if (videoFrame == m_prefetchedVideoFrame)
            return image;
    }
    return m_decoder->decodeFrame(videoFrame);
}

void KelPlaybackScreenTrack::keepFrame()
{
    m_keptPixmap = m_currentPixmap;
    m_keptVideoFrame = m_hasFrame ? m_lastVideoFrame : -1;
}

void KelPlaybackScreenTrack::dropKeptFrame()
{
    m_keptPixmap = QPixmap();
    m_keptVideoFrame = -1;
}

bool KelPlaybackScreenTrack::showFrame(int videoFrame)
{
    if (videoFrame == m_keptVideoFrame) {
        m_currentPixmap = m_keptPixmap;
    } else {
        QImage image = decode(videoFrame);
        if (image.isNull())
            return false;
        m_currentPixmap = QPixmap::fromImage(std::move(image));
    }
    m_hasFrame = true;
    m_lastVideoFrame = videoFrame;
    return true;
}

void KelPlaybackScreenTrack::seekToFrame(int frame)
{
    if (!m_decoder || !m_decoder->isValid()) {
        m_hasFrame = false;
        return;
    }
    if (m_frameIndexes.empty())
        qCWarning(logPlayback) << "Frame indexes not loaded, using direct mapping";
    const int logicFrame = m_frameIndexes.empty() ? frame : std::clamp(frame, 0, logicFrameCount() - 1);
    const int videoFrame = videoFrameAt(frame);
    m_currentLogicFrame = logicFrame;
    if (m_hasFrame && videoFrame == m_lastVideoFrame)
        return;

    if (!showFrame(videoFrame)) {
        qCWarning(logPlayback) << "Failed to decode frame" << videoFrame << "for logic frame" << logicFrame
                               << ", attempting decoder reinit";
        const bool shown = recreateDecoder() && showFrame(videoFrame);
        m_currentLogicFrame = logicFrame; // recreateDecoder() has reset it
        if (!shown) {
            ++m_failedFrames;
            qCCritical(logPlayback) << "Complete failure to decode frame" << videoFrame
                                    << "- decoder status:" << (m_decoder ? "valid" : "invalid")
                                    << "- keeping previous frame";
        }
    }
    m_currentPixmap.setDevicePixelRatio(m_devicePixelRatio);
}

bool KelPlaybackScreenTrack::moveToFrame(int frame)
{
    const qint64 before = m_currentPixmap.cacheKey();
    seekToFrame(frame);
    return m_currentPixmap.cacheKey() != before;
}

void KelPlaybackScreenTrack::paint(QPainter *painter)
{
    if (!painter)
        return;
    if (m_currentPixmap.isNull()) {
        const QPaintDevice *device = painter->device();
        painter->fillRect(0, 0, device->width(), device->height(), Qt::black);
        return;
    }
    if (m_currentPixmap.devicePixelRatioF() != 1.0)
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawPixmap(0, 0, m_currentPixmap);
}

int KelPlaybackScreenTrack::nextKeyFrame()
{
    return m_currentLogicFrame < m_videoFrameCount - 1 ? m_currentLogicFrame + 1 : -1;
}

int KelPlaybackScreenTrack::logicFrameCount() const
{
    return int(m_frameIndexes.size());
}

QSize KelPlaybackScreenTrack::videoSize() const
{
    return m_decoder ? (QSizeF(m_videoSizePx) / m_devicePixelRatio).toSize() : QSize();
}

bool KelPlaybackScreenTrack::covers(const QSize &size) const
{
    const QSizeF wanted = QSizeF(size) * m_devicePixelRatio;
    return m_decoder && m_videoSizePx.width() >= wanted.width() && m_videoSizePx.height() >= wanted.height();
}

void KelPlaybackScreenTrack::releaseDecoder()
{
    m_currentPixmap = QPixmap();
    dropKeptFrame();
    m_frameIndexes = std::vector<int>();
    closeDecoder();
    resetState();
    m_videoFrameCount = 0;
}
