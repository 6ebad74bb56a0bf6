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

// Holds a whole group of pictures of our recordings up to 4K, so that stepping backwards decodes each group once.
constexpr std::size_t kCacheBytes = std::size_t(256) << 20;

// What a decoder of H.264 can hold at most.
constexpr int kDeepestReordering = 16;

// Recordings have few slices a frame; more threads would only wait.
constexpr int kMostThreads = 4;

constexpr int kMostEarlierStarts = 4;

constexpr std::int64_t kMostPixels = std::int64_t(16384) * 16384;

} // namespace

FrameDecoder::FrameDecoder(Options options)
    : m_options(std::move(options))
    , m_cache(kCacheBytes)
{
}

bool FrameDecoder::open(const QString &path, QString *error)
{
    if (!m_source.open(path, m_options.codec, error))
        return false;
    if (!m_options.deviceType.isEmpty() && av::canDecodeOnHardware(*m_source.parameters())) {
        if (openCodec(m_options.deviceType))
            return true;
        warnOfSoftware();
    }
    if (openCodec({}))
        return true;
    *error = QStringLiteral("no decoder opens the video");
    return false;
}

bool FrameDecoder::openCodec(const QByteArray &deviceType)
{
    const AVCodec *codec = avcodec_find_decoder_by_name(m_options.decoderName.constData());
    if (!codec || codec->id != m_options.codec)
        codec = avcodec_find_decoder(m_options.codec);
    m_codec.reset(avcodec_alloc_context3(codec));
    if (!codec || !m_codec || avcodec_parameters_to_context(m_codec.get(), m_source.parameters()) < 0)
        return false;
    if (!deviceType.isEmpty()) {
        m_codec->hw_device_ctx = av::openHardwareDevice(deviceType).release();
        if (!m_codec->hw_device_ctx)
            return false;
    }
    // Threads that share a frame give it at once; threads that each take a frame would delay the first one.
    m_codec->thread_type = FF_THREAD_SLICE;
    m_codec->thread_count = std::clamp(QThread::idealThreadCount(), 1, kMostThreads);
    m_codec->max_pixels = kMostPixels;
    const int depth = std::min(m_source.index().reorderDepth(), kDeepestReordering);
    m_codec->has_b_frames = std::max(m_codec->has_b_frames, depth);
    if (m_codec->has_b_frames == 0)
        m_codec->flags |= AV_CODEC_FLAG_LOW_DELAY;
    // A damaged frame is answered with a null image; the library's own lines about it would flood the log.
    m_codec->log_level_offset = AV_LOG_TRACE - AV_LOG_FATAL;
    m_running = false;
    return avcodec_open2(m_codec.get(), codec, nullptr) >= 0;
}

void FrameDecoder::warnOfSoftware()
{
    qCWarning(kel::logCodec).noquote() << QStringLiteral("[%1] no decoding with \"%2\" here, decoding in software")
                                              .arg(m_options.logName, QString::fromLatin1(m_options.deviceType));
}

QSize FrameDecoder::frameSize() const
{
    return {m_source.parameters()->width, m_source.parameters()->height};
}

QImage FrameDecoder::decode(int number)
{
    if (number < 0 || number >= frameCount() || (!m_cache.find(number) && !fetch(number)))
        return {};
    return m_converter.convert(*m_cache.find(number));
}

bool FrameDecoder::fetch(int number)
{
    const int start = m_source.index().startFor(number);
    const bool ahead = m_running && number > m_lastNumber && start <= m_nextSample;
    m_failed = false;
    if (!ahead)
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
    // Nothing is damaged, yet the frame did not come: where the picture is refreshed bit by bit, it is whole only some
    // keyframes later.
    int earlier = start;
    for (int i = 0; i < kMostEarlierStarts && earlier > 0 && !m_failed; ++i) {
        earlier = m_source.index().keyframeBefore(earlier);
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
    m_firstNumber = sample == 0 ? 0 : m_source.index().sample(sample).number;
    m_lastNumber = m_firstNumber - 1;
}

bool FrameDecoder::advanceTo(int number)
{
    // Once the codec has had so many samples more, it does not hold the frame back any longer: there is none.
    const int sampleCount = m_source.index().sampleCount();
    const int lastSample = std::min(m_source.index().sampleOf(number) + kDeepestReordering + 1, sampleCount);
    av::Frame frame(av_frame_alloc());
    while (m_running && !m_cache.find(number)) {
        const int result = avcodec_receive_frame(m_codec.get(), frame.get());
        if (result == 0) {
            accept(std::exchange(frame, av::Frame(av_frame_alloc())));
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
    if (m_nextSample == m_source.index().sampleCount()) {
        m_draining = true;
        avcodec_send_packet(m_codec.get(), nullptr);
        return;
    }
    const av::Packet packet(av_packet_alloc());
    m_failed |= !m_source.read(m_nextSample++, packet.get()) || avcodec_send_packet(m_codec.get(), packet.get()) < 0;
}

void FrameDecoder::accept(av::Frame frame)
{
    // A device that opens need not know the video; the codec then goes on without, and without a word.
    if (++m_decodedFrames == 1 && m_codec->hw_device_ctx && !frame->hw_frames_ctx)
        warnOfSoftware();
    const int number = static_cast<int>(frame->pts);
    if (frame->pts == AV_NOPTS_VALUE || number < m_firstNumber)
        return;
    m_lastNumber = std::max(m_lastNumber, number);
    bool usable = !(frame->flags & AV_FRAME_FLAG_CORRUPT) && frame->decode_error_flags == 0;
    if (frame->hw_frames_ctx) {
        av::Frame copy(av_frame_alloc());
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
