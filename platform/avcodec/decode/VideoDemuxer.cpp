#include "avcodec/decode/VideoDemuxer.h"

#include "avcodec/ffmpeg/InputFile.h"

#include <climits>
#include <cstring>

namespace av
{

namespace
{

// More than any screen; keeps a hostile header from asking for gigabytes.
constexpr int kLargestSide = 16384;

} // namespace

bool VideoDemuxer::open(const QString &path, AVCodecID codec, QString *error)
{
    m_format = av::openInput(path, "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm", error);
    if (!m_format)
        return false;
    if (!selectVideo(codec, error))
        return false;

    m_samplesAreRaw = std::strstr(m_format->iformat->name, "mov") != nullptr;
    // The demuxer's own index knows decoding times only, which is enough where frames are not reordered.
    m_index =
        SampleIndex(m_samplesAreRaw && m_stream->codecpar->video_delay == 0 ? samplesOfDemuxer() : samplesOfPackets());
    if (m_index.frameCount() == 0) {
        *error = QStringLiteral("the video has no complete frame");
        return false;
    }
    return true;
}

bool VideoDemuxer::selectVideo(AVCodecID codec, QString *error)
{
    const int video = av_find_best_stream(m_format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (video < 0) {
        *error = QStringLiteral("no video in the file");
        return false;
    }
    for (unsigned i = 0; i < m_format->nb_streams; ++i)
        m_format->streams[i]->discard = AVDISCARD_ALL;
    m_stream = m_format->streams[video];

    const AVCodecParameters *found = m_stream->codecpar;
    if (found->codec_id != codec) {
        *error = QStringLiteral("the video is %1, not %2")
                     .arg(QLatin1String(avcodec_get_name(found->codec_id)), QLatin1String(avcodec_get_name(codec)));
        return false;
    }
    if (found->width <= 0 || found->height <= 0 || found->width > kLargestSide || found->height > kLargestSide) {
        *error = QStringLiteral("unusable frame size %1x%2").arg(found->width).arg(found->height);
        return false;
    }
    return true;
}

std::vector<Sample> VideoDemuxer::samplesOfDemuxer()
{
    // With every stream discarded the demuxer walks through the headers of all fragments and reads no sample.
    const av::Packet packet(av_packet_alloc());
    while (av_read_frame(m_format.get(), packet.get()) >= 0)
        av_packet_unref(packet.get());

    const std::int64_t fileSize = avio_size(m_format->pb);
    std::vector<Sample> samples;
    const int count = avformat_index_get_entries_count(m_stream);
    samples.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const AVIndexEntry *entry = avformat_index_get_entry(m_stream, i);
        const bool complete = entry->pos >= 0 && entry->size > 0 && entry->pos <= fileSize - entry->size;
        if (!complete)
            continue;
        Sample sample;
        sample.position = entry->pos;
        sample.presentation = i;
        sample.size = entry->size;
        sample.keyframe = entry->flags & AVINDEX_KEYFRAME;
        sample.hidden = entry->flags & AVINDEX_DISCARD_FRAME;
        samples.push_back(sample);
    }
    return samples;
}

std::vector<Sample> VideoDemuxer::samplesOfPackets()
{
    m_stream->discard = AVDISCARD_DEFAULT;
    const av::Packet packet(av_packet_alloc());
    std::vector<Sample> samples;
    while (samples.size() < INT_MAX && av_read_frame(m_format.get(), packet.get()) >= 0) {
        const bool complete = packet->size > 0 && !(packet->flags & AV_PKT_FLAG_CORRUPT);
        if (packet->stream_index == m_stream->index && complete) {
            Sample sample;
            sample.position = packet->pos;
            sample.presentation = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
            sample.size = packet->size;
            sample.keyframe = packet->flags & AV_PKT_FLAG_KEY;
            sample.hidden = packet->flags & AV_PKT_FLAG_DISCARD;
            samples.push_back(sample);
        }
        av_packet_unref(packet.get());
    }
    return samples;
}

double VideoDemuxer::framesPerSecond() const
{
    const AVRational rate = av_guess_frame_rate(m_format.get(), m_stream, nullptr);
    return rate.num > 0 && rate.den > 0 ? av_q2d(rate) : 0.0;
}

bool VideoDemuxer::read(int sample, AVPacket *packet)
{
    const Sample &wanted = m_index.sample(sample);
    if (!(m_samplesAreRaw ? readDirectly(wanted, packet) : readByDemuxer(sample, packet)))
        return false;
    // From here on time is counted in frames and samples: whatever the file's clock does, a decoded frame says which
    // one it is.
    packet->pts = wanted.hidden ? AV_NOPTS_VALUE : wanted.number;
    packet->dts = sample;
    packet->flags = (wanted.keyframe ? AV_PKT_FLAG_KEY : 0) | (wanted.hidden ? AV_PKT_FLAG_DISCARD : 0);
    return true;
}

bool VideoDemuxer::readDirectly(const Sample &sample, AVPacket *packet)
{
    return avio_seek(m_format->pb, sample.position, SEEK_SET) >= 0 &&
           av_get_packet(m_format->pb, packet, sample.size) == sample.size;
}

bool VideoDemuxer::readByDemuxer(int sample, AVPacket *packet)
{
    const Sample &wanted = m_index.sample(sample);
    if (sample != m_nextOfDemuxer &&
        av_seek_frame(m_format.get(), m_stream->index, wanted.presentation, AVSEEK_FLAG_BACKWARD) < 0) {
        m_nextOfDemuxer = -1;
        return false;
    }
    m_nextOfDemuxer = -1;
    while (av_read_frame(m_format.get(), packet) >= 0) {
        const bool isVideo = packet->stream_index == m_stream->index;
        if (isVideo && packet->pos == wanted.position) {
            m_nextOfDemuxer = sample + 1;
            return true;
        }
        const bool passed = isVideo && packet->pos > wanted.position;
        av_packet_unref(packet);
        if (passed)
            break;
    }
    return false;
}

} // namespace av
