#include "avcodec/audio/AudioReader.h"

#include "avcodec/AudioTrack.h"
#include "avcodec/ffmpeg/InputFile.h"
#include "logging/PlatformLog.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace av
{

namespace
{

constexpr const char *kFormats = "wav,w64,aiff,mp3,flac,ogg,aac,mov,mp4,m4a,3gp,3g2,mj2,matroska,webm";
// Beyond any real format; prevents malicious headers from causing huge allocations in the resampler.
constexpr int kMinRate = 1'000;
constexpr int kMaxRate = 768'000;
constexpr int kMaxChannels = 64;
constexpr qint64 kPreroll = 512; // samples before the range, to settle the filter of the resampler
constexpr qint64 kUnlimited = std::numeric_limits<qint64>::max() / 4;

qint64 samplesOf(double ms)
{
    return std::llround(std::clamp(ms, -1e12, 1e12) * AudioReader::kSampleRate / 1000);
}

float finite(float sample)
{
    return std::isfinite(sample) ? sample : 0.0F;
}

} // namespace

bool AudioReader::open(const AudioTrack &track, QString *error)
{
    m_path = track.path;
    if (!(track.speed > 0.0) || std::isinf(track.speed)) {
        *error = QStringLiteral("the speed is not above 0");
        return false;
    }
    m_packet.reset(av_packet_alloc());
    m_frame.reset(av_frame_alloc());
    if (track.device) {
        m_device = track.device;
        m_input = readerOf(*m_device);
        m_format = openInput(m_input.get(), "wav", error);
    } else {
        m_format = openInput(track.path, kFormats, error);
    }
    if (!m_format || !openDecoder(error) || !openResampler(error))
        return false;
    setRange(track);
    seekNearRange();
    return true;
}

void AudioReader::setRange(const AudioTrack &track)
{
    const qint64 offset = samplesOf(track.offsetMs);
    m_silence = std::max<qint64>(offset, 0);
    m_begin = track.startMs < 0 ? 0 : samplesOf(track.startMs / track.speed);
    m_end = track.endMs < 0 ? kUnlimited : samplesOf(track.endMs / track.speed);
    m_begin += std::max<qint64>(-offset, 0);
    m_remaining = std::max<qint64>(m_end - m_begin, 0);
}

bool AudioReader::openDecoder(QString *error)
{
    const AVCodec *codec = nullptr;
    const int sound = av_find_best_stream(m_format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
    if (sound < 0) {
        *error = QStringLiteral("no sound in the file");
        return false;
    }
    for (unsigned i = 0; i < m_format->nb_streams; ++i)
        m_format->streams[i]->discard = int(i) == sound ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    m_stream = m_format->streams[sound];
    m_decoder.reset(avcodec_alloc_context3(codec));
    int code = m_decoder ? avcodec_parameters_to_context(m_decoder.get(), m_stream->codecpar) : AVERROR(ENOMEM);
    if (code >= 0) {
        m_decoder->pkt_timebase = m_stream->time_base;
        code = avcodec_open2(m_decoder.get(), codec, nullptr);
    }
    if (code < 0)
        *error = errorText(code);
    return code >= 0;
}

bool AudioReader::openResampler(QString *error)
{
    AVChannelLayout &layout = m_decoder->ch_layout;
    const int rate = m_decoder->sample_rate;
    if (rate < kMinRate || rate > kMaxRate || layout.nb_channels < 1 || layout.nb_channels > kMaxChannels) {
        *error = QStringLiteral("unsupported sound format: %1 channels at %2 Hz").arg(layout.nb_channels).arg(rate);
        return false;
    }
    if (layout.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&layout, layout.nb_channels);
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    SwrContext *context = nullptr;
    int code = swr_alloc_set_opts2(&context, &stereo, AV_SAMPLE_FMT_FLTP, kSampleRate, &layout, m_decoder->sample_fmt,
                                   rate, 0, nullptr);
    m_resampler.reset(context);
    const double monoToStereo[] = {1.0, 1.0}; // the default matrix would attenuate by 3 dB
    if (code >= 0 && layout.nb_channels == 1)
        code = swr_set_matrix(context, monoToStereo, 1);
    if (code >= 0)
        code = swr_init(context);
    if (code < 0)
        *error = QStringLiteral("%1 channels cannot be mixed: %2").arg(layout.nb_channels).arg(errorText(code));
    return code >= 0;
}

/// Seeks to a little before the range. This is exact only for PCM; other formats are decoded from the start of the
/// file.
void AudioReader::seekNearRange()
{
    const int rate = std::max(m_decoder->sample_rate, 1); // its range was checked with the resampler
    const int common = std::gcd(rate, kSampleRate);
    // The shortest duration that is a whole number of samples at both rates:
    const qint64 sourceUnit = rate / common;
    const qint64 outputUnit = kSampleRate / common;
    const qint64 units = std::max<qint64>(m_begin / outputUnit - (kPreroll / sourceUnit + 1), 0);
    m_sourceSkip = units * sourceUnit;
    m_outputSkip = m_begin - units * outputUnit;
    const bool isPcm = av_get_exact_bits_per_sample(m_stream->codecpar->codec_id) > 0;
    if (!isPcm || m_sourceSkip == 0)
        return;
    const qint64 time = av_rescale_q(m_sourceSkip, {1, rate}, m_stream->time_base);
    m_isPositioned = av_seek_frame(m_format.get(), m_stream->index, time, AVSEEK_FLAG_BACKWARD) < 0;
}

qint64 AudioReader::expectedLength() const
{
    const qint64 length = av_rescale(std::max<qint64>(m_format->duration, 0), kSampleRate, AV_TIME_BASE);
    return m_silence + std::clamp<qint64>(length - m_begin, 0, m_remaining);
}

int AudioReader::read(float *left, float *right, int count)
{
    int done = int(std::min<qint64>(m_silence, count));
    std::fill_n(left, done, 0.0F);
    std::fill_n(right, done, 0.0F);
    m_silence -= done;
    while (done < count && m_remaining > 0) {
        const int taken = take(left + done, right + done, int(std::min<qint64>(count - done, m_remaining)));
        done += taken;
        m_remaining -= taken;
        if (taken == 0 && !refill())
            m_remaining = 0;
    }
    return done;
}

int AudioReader::take(float *left, float *right, int count)
{
    const qint64 held = qint64(m_left.size() - m_given);
    const qint64 skipped = std::min(m_outputSkip, held);
    m_outputSkip -= skipped;
    m_given += size_t(skipped);
    const int taken = int(std::min<qint64>(held - skipped, count));
    for (int i = 0; i < taken; ++i, ++m_given) {
        left[i] = finite(m_left[m_given]); // encoders reject NaN and infinity
        right[i] = finite(m_right[m_given]);
    }
    return taken;
}

/// False at the end.
bool AudioReader::refill()
{
    m_left.clear();
    m_right.clear();
    m_given = 0;
    if (m_isDrained)
        return false;
    if (!decode()) {
        m_isDrained = true;
        resample(nullptr);
    }
    return true;
}

/// Resamples the next decoded frame. False if there is none.
bool AudioReader::decode()
{
    for (;;) {
        const int code = avcodec_receive_frame(m_decoder.get(), m_frame.get());
        if (code >= 0)
            break;
        if (code != AVERROR(EAGAIN))
            return false;
        const int read = av_read_frame(m_format.get(), m_packet.get());
        if (read < 0 && read != AVERROR_EOF)
            qCWarning(kel::logCodec).noquote() << "[AudioReader]" << m_path << "ends early:" << errorText(read);
        // Errors are ignored: a damaged packet is skipped, as the next one may be intact.
        if (read < 0 || m_packet->stream_index == m_stream->index)
            avcodec_send_packet(m_decoder.get(), read < 0 ? nullptr : m_packet.get());
        av_packet_unref(m_packet.get());
    }
    const AVFrame *frame = m_frame.get();
    if (frame->format != m_decoder->sample_fmt || frame->sample_rate != m_decoder->sample_rate ||
        frame->ch_layout.nb_channels != m_decoder->ch_layout.nb_channels) {
        qCWarning(kel::logCodec).noquote()
            << "[AudioReader]" << m_path << "changes its format midway; the rest is ignored";
        return false;
    }
    resample(frame);
    return true;
}

/// Null flushes the resampler.
void AudioReader::resample(const AVFrame *frame)
{
    int count = 0;
    int skipped = 0;
    std::array<const uint8_t *, kMaxChannels> planes{};
    if (frame) {
        if (!std::exchange(m_isPositioned, true))
            m_sourceSkip -= av_rescale_q(frame->pts, m_stream->time_base, {1, frame->sample_rate});
        skipped = int(std::clamp<qint64>(m_sourceSkip, 0, frame->nb_samples));
        m_sourceSkip -= skipped;
        count = frame->nb_samples - skipped;
        if (count == 0)
            return;
    }
    const int space = swr_get_out_samples(m_resampler.get(), count);
    if (space <= 0)
        return;
    m_left.resize(size_t(space));
    m_right.resize(size_t(space));
    if (frame) {
        const auto format = AVSampleFormat(frame->format);
        const int channels = frame->ch_layout.nb_channels;
        const bool isPlanar = av_sample_fmt_is_planar(format) != 0;
        const int step = av_get_bytes_per_sample(format) * (isPlanar ? 1 : channels);
        for (int i = 0; i < (isPlanar ? channels : 1); ++i)
            planes[size_t(i)] = frame->extended_data[i] + qint64(skipped) * step;
    }
    uint8_t *out[] = {reinterpret_cast<uint8_t *>(m_left.data()), reinterpret_cast<uint8_t *>(m_right.data())};
    const int converted = swr_convert(m_resampler.get(), out, space, frame ? planes.data() : nullptr, count);
    m_left.resize(size_t(std::max(converted, 0)));
    m_right.resize(m_left.size());
}

} // namespace av
