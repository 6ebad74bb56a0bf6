#include "avcodec/decode/FrameDecoder.h"

#include "avcodec/decode/HardwareDevice.h"
#include "logging/PlatformLog.h"

#include <QDebug>
#include <QThread>

#include <algorithm>
#include <utility>

namespace av
{

namespace
{

// Holds a whole GOP of our recordings up to 4K, so that stepping backwards decodes each GOP once.
constexpr std::size_t kCacheBytes = std::size_t(256) << 20;

// The largest number of frames that an H.264 decoder may hold back.
constexpr int kMaxReorderDepth = 16;

// Recordings have few slices per frame; more threads would be idle.
constexpr int kMaxThreads = 4;

constexpr int kMaxEarlierStarts = 4;

constexpr std::int64_t kMaxPixels = std::int64_t(16384) * 16384;

} // namespace

FrameDecoder::FrameDecoder(Options options)
    : m_options(std::move(options))
    , m_cache(kCacheBytes)
{
}

bool FrameDecoder::open(const QString &path, QString *error)
{
    if (!m_demuxer.open(path, m_options.codec, error))
        return false;
    if (!m_options.deviceType.isEmpty() && canDecodeOnHardware(*m_demuxer.parameters())) {
        if (openCodec(m_options.deviceType))
            return true;
        warnOfSoftwareFallback();
    }
    if (openCodec({}))
        return true;
    *error = QStringLiteral("no decoder can open the video");
    return false;
}

bool FrameDecoder::openCodec(const QByteArray &deviceType)
{
    const AVCodec *codec = avcodec_find_decoder_by_name(m_options.decoderName.constData());
    if (!codec || codec->id != m_options.codec)
        codec = avcodec_find_decoder(m_options.codec);
    m_codec.reset(avcodec_alloc_context3(codec));
    if (!codec || !m_codec || avcodec_parameters_to_context(m_codec.get(), m_demuxer.parameters()) < 0)
        return false;
    if (!deviceType.isEmpty()) {
        m_codec->hw_device_ctx = openHardwareDevice(deviceType).release();
        if (!m_codec->hw_device_ctx)
            return false;
    }
    // Slice threads add no delay, unlike frame threads.
    m_codec->thread_type = FF_THREAD_SLICE;
    m_codec->thread_count = std::clamp(QThread::idealThreadCount(), 1, kMaxThreads);
    m_codec->max_pixels = kMaxPixels;
    const int depth = std::min(m_demuxer.index().reorderDepth(), kMaxReorderDepth);
    m_codec->has_b_frames = std::max(m_codec->has_b_frames, depth);
    if (m_codec->has_b_frames == 0)
        m_codec->flags |= AV_CODEC_FLAG_LOW_DELAY;
    // Damaged frames are reported as null images; the library's messages about them would flood the log.
    m_codec->log_level_offset = AV_LOG_TRACE - AV_LOG_FATAL;
    m_running = false;
    return avcodec_open2(m_codec.get(), codec, nullptr) >= 0;
}

void FrameDecoder::warnOfSoftwareFallback()
{
    qCWarning(kel::logCodec).noquote() << QStringLiteral("[%1] no hardware decoding with \"%2\", decoding in software")
                                              .arg(m_options.logName, QString::fromLatin1(m_options.deviceType));
}

QSize FrameDecoder::frameSize() const
{
    return {m_demuxer.parameters()->width, m_demuxer.parameters()->height};
}

QImage FrameDecoder::decode(int number)
{
    if (number < 0 || number >= frameCount() || (!m_cache.find(number) && !fetch(number)))
        return {};
    return m_converter.convert(*m_cache.find(number));
}

bool FrameDecoder::fetch(int number)
{
    const int start = m_demuxer.index().startFor(number);
    const bool canContinue = m_running && number > m_lastNumber && start <= m_nextSample;
    m_failed = false;
    if (!canContinue)
        restartAt(start);
    if (advanceTo(number))
        return true;

    if (m_failed && m_codec->hw_device_ctx) {
        qCWarning(kel::logCodec).noquote()
            << QStringLiteral("[%1] the hardware failed at frame %2, decoding in software")
                   .arg(m_options.logName)
                   .arg(number);
        if (!openCodec({}))
            return false;
        restartAt(start);
        return advanceTo(number);
    }
    // No error, but no frame either: with gradual intra refresh, frames are complete only several keyframes later.
    int earlier = start;
    for (int i = 0; i < kMaxEarlierStarts && earlier > 0 && !m_failed; ++i) {
        earlier = m_demuxer.index().keyframeBefore(earlier);
        restartAt(earlier);
        if (advanceTo(number))
            return true;
    }
    return false;
}

void FrameDecoder::restartAt(int sample)
{
    avcodec_flush_buffers(m_codec.get());
    m_running = true;
    m_draining = false;
    m_nextSample = sample;
    m_firstNumber = sample == 0 ? 0 : m_demuxer.index().sample(sample).frame;
    m_lastNumber = m_firstNumber - 1;
}

bool FrameDecoder::advanceTo(int number)
{
    // After this many further samples the codec cannot be holding the frame back any longer, so it does not have it.
    const int sampleCount = m_demuxer.index().sampleCount();
    const int lastSample = std::min(m_demuxer.index().sampleOf(number) + kMaxReorderDepth + 1, sampleCount);
    Frame frame(av_frame_alloc());
    while (m_running && !m_cache.find(number)) {
        const int result = avcodec_receive_frame(m_codec.get(), frame.get());
        if (result == 0) {
            accept(std::exchange(frame, Frame(av_frame_alloc())));
            continue;
        }
        m_failed |= result != AVERROR(EAGAIN) && result != AVERROR_EOF;
        if (m_draining)
            m_running = false;
        else if (m_nextSample < lastSample || lastSample == sampleCount)
            feed();
        else
            return false;
    }
    return m_cache.find(number) != nullptr;
}

void FrameDecoder::feed()
{
    if (m_nextSample == m_demuxer.index().sampleCount()) {
        m_draining = true;
        avcodec_send_packet(m_codec.get(), nullptr);
        return;
    }
    const Packet packet(av_packet_alloc());
    m_failed |= !m_demuxer.read(m_nextSample++, packet.get()) || avcodec_send_packet(m_codec.get(), packet.get()) < 0;
}

void FrameDecoder::accept(Frame frame)
{
    // A device that opens may still not support the video; the codec then silently decodes in software.
    if (++m_decodedFrames == 1 && m_codec->hw_device_ctx && !frame->hw_frames_ctx)
        warnOfSoftwareFallback();
    const int number = static_cast<int>(frame->pts);
    if (frame->pts == AV_NOPTS_VALUE || number < m_firstNumber)
        return;
    m_lastNumber = std::max(m_lastNumber, number);
    bool usable = !(frame->flags & AV_FRAME_FLAG_CORRUPT) && frame->decode_error_flags == 0;
    if (frame->hw_frames_ctx) {
        Frame copy(av_frame_alloc());
        usable = usable && av_hwframe_transfer_data(copy.get(), frame.get(), 0) >= 0 &&
                 av_frame_copy_props(copy.get(), frame.get()) >= 0;
        frame = std::move(copy);
    }
    if (usable)
        m_cache.insert(number, std::move(frame));
    else
        m_failed = true;
}

} // namespace av
