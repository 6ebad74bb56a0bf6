#include "avcodec/decode/VideoDemuxer.h"

#include "avcodec/ffmpeg/InputFile.h"

#include <climits>
#include <cstring>

namespace av
{

namespace
{

// Larger than any screen; prevents malicious headers from causing huge allocations.
constexpr int kMaxSide = 16384;

} // namespace

bool VideoDemuxer::open(const QString &path, AVCodecID codec, QString *error)
{
    m_format = openInput(path, "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm", error);
    if (!m_format)
        return false;
    if (!selectVideo(codec, error))
        return false;

    m_samplesAreContiguous = std::strstr(m_format->iformat->name, "mov") != nullptr;
    // The demuxer's own index has only decoding times, which is enough if frames are not reordered.
    m_index = SampleIndex(m_samplesAreContiguous && m_stream->codecpar->video_delay == 0 ? samplesFromIndex()
                                                                                         : samplesFromPackets());
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
    if (found->width <= 0 || found->height <= 0 || found->width > kMaxSide || found->height > kMaxSide) {
        *error = QStringLiteral("unsupported frame size %1x%2").arg(found->width).arg(found->height);
        return false;
    }
    return true;
}

std::vector<Sample> VideoDemuxer::samplesFromIndex()
{
    // With all streams discarded, the demuxer parses the headers of all fragments without reading any sample.
    const Packet packet(av_packet_alloc());
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
        sample.offset = entry->pos;
        sample.presentationTime = i;
        sample.size = entry->size;
        sample.isKeyframe = entry->flags & AVINDEX_KEYFRAME;
        sample.isHidden = entry->flags & AVINDEX_DISCARD_FRAME;
        samples.push_back(sample);
    }
    return samples;
}

std::vector<Sample> VideoDemuxer::samplesFromPackets()
{
    m_stream->discard = AVDISCARD_DEFAULT;
    const Packet packet(av_packet_alloc());
    std::vector<Sample> samples;
    while (samples.size() < INT_MAX && av_read_frame(m_format.get(), packet.get()) >= 0) {
        const bool complete = packet->size > 0 && !(packet->flags & AV_PKT_FLAG_CORRUPT);
        if (packet->stream_index == m_stream->index && complete) {
            Sample sample;
            sample.offset = packet->pos;
            sample.presentationTime = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
            sample.size = packet->size;
            sample.isKeyframe = packet->flags & AV_PKT_FLAG_KEY;
            sample.isHidden = packet->flags & AV_PKT_FLAG_DISCARD;
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
    if (!(m_samplesAreContiguous ? readDirectly(wanted, packet) : readByDemuxing(sample, packet)))
        return false;
    // Replaces the file's timestamps by numbers, so that a decoded frame states which one it is.
    packet->pts = wanted.isHidden ? AV_NOPTS_VALUE : wanted.frame;
    packet->dts = sample;
    packet->flags = (wanted.isKeyframe ? AV_PKT_FLAG_KEY : 0) | (wanted.isHidden ? AV_PKT_FLAG_DISCARD : 0);
    return true;
}

bool VideoDemuxer::readDirectly(const Sample &sample, AVPacket *packet)
{
    return avio_seek(m_format->pb, sample.offset, SEEK_SET) >= 0 &&
           av_get_packet(m_format->pb, packet, sample.size) == sample.size;
}

bool VideoDemuxer::readByDemuxing(int sample, AVPacket *packet)
{
    const Sample &wanted = m_index.sample(sample);
    if (sample != m_nextDemuxed &&
        av_seek_frame(m_format.get(), m_stream->index, wanted.presentationTime, AVSEEK_FLAG_BACKWARD) < 0) {
        m_nextDemuxed = -1;
        return false;
    }
    m_nextDemuxed = -1;
    while (av_read_frame(m_format.get(), packet) >= 0) {
        const bool isVideo = packet->stream_index == m_stream->index;
        if (isVideo && packet->pos == wanted.offset) {
            m_nextDemuxed = sample + 1;
            return true;
        }
        const bool passed = isVideo && packet->pos > wanted.offset;
        av_packet_unref(packet);
        if (passed)
            break;
    }
    return false;
}

} // namespace av
