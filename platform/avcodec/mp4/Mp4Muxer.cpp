#include "avcodec/mp4/Mp4Muxer.h"

#include "avcodec/ffmpeg/AvLog.h"
#include "avcodec/x264/X264Encoder.h"

#include <algorithm>
#include <cstring>

namespace av
{

Mp4Muxer::Mp4Muxer(const Mp4VideoTrack &track, AVIOContext *output, const char *url)
    : m_packet(av_packet_alloc())
    , m_fps(track.fps)
{
    useQtLog();
    AVFormatContext *context = nullptr;
    if (avformat_alloc_output_context2(&context, nullptr, "mp4", url) < 0)
        return;
    m_context.reset(context);
    m_context->pb = output;
    m_context->flags |= AVFMT_FLAG_FLUSH_PACKETS;

    AVStream *stream = avformat_new_stream(context, nullptr);
    const auto configurationSize = std::size_t(track.configuration.size());
    auto *configuration = static_cast<uint8_t *>(av_mallocz(configurationSize + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!stream || !configuration) {
        av_free(configuration);
        m_context.reset();
        return;
    }
    std::memcpy(configuration, track.configuration.constData(), configurationSize);
    stream->time_base = {1, track.fps};
    stream->avg_frame_rate = {track.fps, 1};
    AVCodecParameters *codec = stream->codecpar;
    codec->codec_type = AVMEDIA_TYPE_VIDEO;
    codec->codec_id = AV_CODEC_ID_H264;
    codec->width = track.size.width();
    codec->height = track.size.height();
    codec->color_space = track.colorSpace;
    codec->color_range = track.colorRange;
    codec->color_primaries = AVCOL_PRI_BT709;
    codec->color_trc = track.colorSpace == AVCOL_SPC_RGB ? AVCOL_TRC_IEC61966_2_1 : AVCOL_TRC_BT709;
    codec->extradata = configuration;
    codec->extradata_size = int(configurationSize);
}

int Mp4Muxer::writeHeader(const char *flags)
{
    if (!m_context || !m_packet)
        return AVERROR(ENOMEM);
    AVDictionary *options = nullptr;
    av_dict_set(&options, "movflags", flags, 0);
    const int code = avformat_write_header(m_context.get(), &options);
    av_dict_free(&options);
    return result(std::min(code, 0));
}

int Mp4Muxer::writeFrame(const EncodedVideoFrame &frame)
{
    AVPacket *packet = m_packet.get();
    packet->data = const_cast<uint8_t *>(frame.data); // only read
    packet->size = frame.size;
    packet->pts = frame.pts;
    packet->dts = frame.dts;
    packet->duration = 1;
    packet->flags = frame.isKeyframe ? AV_PKT_FLAG_KEY : 0;
    packet->stream_index = 0;
    av_packet_rescale_ts(packet, {1, m_fps}, m_context->streams[0]->time_base);
    const int code = av_write_frame(m_context.get(), packet);
    av_packet_unref(packet);
    return result(code);
}

int Mp4Muxer::flushFragment()
{
    return result(std::min(av_write_frame(m_context.get(), nullptr), 0));
}

int Mp4Muxer::writeTrailer()
{
    return result(av_write_trailer(m_context.get()));
}

int Mp4Muxer::result(int code) const
{
    // The muxer ignores I/O errors of its output.
    return code < 0 ? code : std::min(m_context->pb->error, 0);
}

} // namespace av
