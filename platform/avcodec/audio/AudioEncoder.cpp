#include "avcodec/audio/AudioEncoder.h"

#include <algorithm>

namespace av
{

namespace
{

constexpr int kBitRate = 192'000;
constexpr int kPcmBlock = 1'024;

/// Planar floats if the encoder takes them, otherwise its preferred format.
AVSampleFormat sampleFormat(const AVCodec *codec)
{
    const AVSampleFormat *format = codec->sample_fmts;
    for (; format && *format != AV_SAMPLE_FMT_NONE; ++format) {
        if (*format == AV_SAMPLE_FMT_FLTP)
            return *format;
    }
    return codec->sample_fmts ? codec->sample_fmts[0] : AV_SAMPLE_FMT_FLTP;
}

} // namespace

bool AudioEncoder::open(AVCodecID id, AVFormatContext *output, QString *error)
{
    const char *name = avcodec_get_name(id);
    const AVCodec *codec = avcodec_find_encoder(id);
    if (!codec) {
        *error = QStringLiteral("there is no encoder for %1").arg(QLatin1String(name));
        return false;
    }
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    m_encoder.reset(avcodec_alloc_context3(codec));
    m_packet.reset(av_packet_alloc());
    m_frame.reset(av_frame_alloc());
    m_output = output;
    m_stream = avformat_new_stream(output, nullptr);
    int code = AVERROR(ENOMEM);
    if (m_encoder && m_packet && m_frame && m_stream) {
        m_encoder->sample_rate = kSampleRate;
        m_encoder->sample_fmt = sampleFormat(codec);
        m_encoder->ch_layout = stereo;
        m_encoder->bit_rate = kBitRate;
        m_encoder->time_base = {1, kSampleRate};
        m_encoder->flags |= AV_CODEC_FLAG_BITEXACT;
        if (output->oformat->flags & AVFMT_GLOBALHEADER)
            m_encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        code = avcodec_open2(m_encoder.get(), codec, nullptr);
    }
    if (code >= 0) {
        m_stream->time_base = m_encoder->time_base;
        code = avcodec_parameters_from_context(m_stream->codecpar, m_encoder.get());
    }
    if (code >= 0 && m_encoder->sample_fmt != AV_SAMPLE_FMT_FLTP) {
        SwrContext *context = nullptr;
        code = swr_alloc_set_opts2(&context, &stereo, m_encoder->sample_fmt, kSampleRate, &stereo, AV_SAMPLE_FMT_FLTP,
                                   kSampleRate, 0, nullptr);
        m_converter.reset(context);
        code = code < 0 ? code : swr_init(context);
    }
    if (code < 0) {
        *error = QStringLiteral("the %1 encoder cannot be opened: %2").arg(QLatin1String(name), errorText(code));
        return false;
    }
    m_blockSize = m_encoder->frame_size > 0 ? m_encoder->frame_size : kPcmBlock;
    return true;
}

int AudioEncoder::encode(const float *left, const float *right, int count)
{
    AVFrame *frame = m_frame.get();
    av_frame_unref(frame);
    frame->nb_samples = count;
    frame->format = m_encoder->sample_fmt;
    frame->sample_rate = kSampleRate;
    frame->ch_layout = m_encoder->ch_layout;
    frame->pts = m_position;
    m_position += count;
    if (const int code = av_frame_get_buffer(frame, 0); code < 0)
        return code;
    if (m_converter) {
        const uint8_t *in[] = {reinterpret_cast<const uint8_t *>(left), reinterpret_cast<const uint8_t *>(right)};
        if (const int code = swr_convert(m_converter.get(), frame->data, count, in, count); code < 0)
            return code;
    } else {
        std::copy_n(left, count, reinterpret_cast<float *>(frame->data[0]));
        std::copy_n(right, count, reinterpret_cast<float *>(frame->data[1]));
    }
    return send(frame);
}

/// Null flushes the encoder.
int AudioEncoder::send(const AVFrame *frame)
{
    int code = avcodec_send_frame(m_encoder.get(), frame);
    while (code >= 0) {
        code = avcodec_receive_packet(m_encoder.get(), m_packet.get());
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF)
            return 0;
        if (code >= 0)
            code = write();
    }
    return code;
}

int AudioEncoder::write()
{
    m_packet->stream_index = m_stream->index;
    av_packet_rescale_ts(m_packet.get(), m_encoder->time_base, m_stream->time_base);
    return av_interleaved_write_frame(m_output, m_packet.get());
}

} // namespace av
