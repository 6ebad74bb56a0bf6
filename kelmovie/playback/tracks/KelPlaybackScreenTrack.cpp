#include "playback/tracks/KelPlaybackScreenTrack.h"

#include "avcodec/KelAVCodecDecoder.h"
#include "avcodec/decode/h264Decoder.h"
#include "logging/Log.h"
#include "recording/FrameIndexReader.h"
#include "recording/KelRecordingFiles.h"

#include <QDebug>
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
    setName("ScreenTrack");
    if (!readFrameIndex(directory, m_frameIndexes))
        qCWarning(logPlayback) << "Failed to load frame indexes, will try to create default mapping";
    if (!chooseVideo())
        return;
    m_decoder = openDecoder();
    if (!m_decoder)
        return;
    m_videoSize = m_decoder->getFrameSize();
    m_videoFrameCount = m_decoder->getFrameCount();
    if (m_videoFrameCount <= 0) {
        setErrorString(QString("Invalid frame count from decoder: %1").arg(m_videoFrameCount));
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

bool KelPlaybackScreenTrack::chooseVideo()
{
    const QString mkvPath = KelRecordingFiles::path(directory(), KelRecordingFiles::kMkvVideo);
    const QString mp4Path = KelRecordingFiles::path(directory(), KelRecordingFiles::kVideo);
    for (const QString &path : {mkvPath, mp4Path}) {
        if (QFileInfo::exists(path)) {
            m_videoPath = path;
            return true;
        }
    }
    setErrorString("Video file not found. Searched for: " + mkvPath + " and " + mp4Path);
    qCCritical(logPlayback).noquote() << errorString();
    return false;
}

bool KelPlaybackScreenTrack::isMatroska() const
{
    return m_videoPath.endsWith(".mkv", Qt::CaseInsensitive);
}

/// Null unless FFV1 is supported and the video could be opened with it.
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
        setErrorString("H264 decoder not supported on this system");
        qCCritical(logPlayback).noquote() << errorString();
        return nullptr;
    }
    DecoderPointer decoder =
        m_decoders.createH264(m_videoPath, h264Decoder::PreferH264DecodeParams(m_preferHardwareDecode));
    if (!decoder || !decoder->isValid()) {
        setErrorString("Failed to create H264 decoder or decoder is invalid");
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
        setErrorString("H264 decoder not supported on this system");
        qCCritical(logPlayback).noquote() << errorString();
        return false;
    }
    const H264DecodeParams software{"h264", QString()};
    for (const H264DecodeParams &params : {h264Decoder::PreferH264DecodeParams(m_preferHardwareDecode), software}) {
        m_decoder = m_decoders.createH264(m_videoPath, params);
        if (m_decoder && m_decoder->isValid()) {
            resetState();
            return true;
        }
    }
    m_decoder.reset();
    setErrorString("Failed to reinitialize H264 decoder with both hardware and software options");
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
    m_ahead = {}; // waits
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
    if (!m_decoder || !m_decoder->isValid() || m_ahead.valid())
        return;
    const int videoFrame = videoFrameAt(frame);
    if (videoFrame == m_keptVideoFrame || (m_hasFrame && videoFrame == m_lastVideoFrame))
        return;
    m_aheadVideoFrame = videoFrame;
    m_ahead = std::async(std::launch::async,
                         [decoder = m_decoder.get(), videoFrame] { return decoder->decodeFrame(videoFrame); });
}

bool KelPlaybackScreenTrack::waitForPrefetch(std::chrono::milliseconds limit) const
{
    return !m_ahead.valid() || m_ahead.wait_for(limit) == std::future_status::ready;
}

/// The decoder works for one at a time: what was begun is awaited, whether it is wanted or not.
QImage KelPlaybackScreenTrack::decode(int videoFrame)
{
    if (m_ahead.valid()) {
        QImage image = m_ahead.get();
        if (videoFrame == m_aheadVideoFrame)
            return image;
    }
    return m_decoder->decodeFrame(videoFrame);
}

void KelPlaybackScreenTrack::keepPicture()
{
    m_keptPixmap = m_currentPixmap;
    m_keptVideoFrame = m_hasFrame ? m_lastVideoFrame : -1;
}

void KelPlaybackScreenTrack::dropKeptPicture()
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
        m_currentLogicFrame = logicFrame; // a new decoder forgets it
        if (!shown) {
            ++m_lostPictures;
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

QSize KelPlaybackScreenTrack::frameSize() const
{
    return m_decoder ? (QSizeF(m_videoSize) / m_devicePixelRatio).toSize() : QSize();
}

bool KelPlaybackScreenTrack::covers(const QSize &size) const
{
    const QSizeF wanted = QSizeF(size) * m_devicePixelRatio;
    return m_decoder && m_videoSize.width() >= wanted.width() && m_videoSize.height() >= wanted.height();
}

void KelPlaybackScreenTrack::releaseDecoder()
{
    m_currentPixmap = QPixmap();
    dropKeptPicture();
    m_frameIndexes = std::vector<int>();
    closeDecoder();
    resetState();
    m_videoFrameCount = 0;
}
