#include "avcodec/audio/MixJob.h"

#include "avcodec/ffmpeg/InputFile.h"
#include "logging/PlatformLog.h"

#include <algorithm>
#include <cmath>

namespace av
{

namespace
{

constexpr const char *kVideoFormats = "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm";
constexpr AVRational kSample{1, AudioEncoder::kSampleRate};

} // namespace

MixJob::MixJob(const MixContainer &container, const QString &path, const MixProgress &progress)
    : m_container(container)
    , m_path(path)
    , m_progress(progress)
    , m_packet(av_packet_alloc())
{
}

QString MixJob::open(const QString &videoPath, const QList<AudioTrack> &tracks)
{
    QString problem = openVideo(videoPath);
    if (problem.isEmpty())
        problem = openAudio(tracks);
    if (problem.isEmpty())
        problem = openOutput();
    return problem;
}

QString MixJob::openVideo(const QString &path)
{
    QString problem;
    // Copying needs no stream parameters from decoding, which takes seconds for huge frames.
    m_video = openContainer(path, kVideoFormats, &problem);
    if (!m_video)
        return QStringLiteral("Cannot read video %1: %2").arg(path, problem);
    const int video = av_find_best_stream(m_video.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (video < 0)
        return QStringLiteral("Cannot read video %1: no video in the file").arg(path);
    for (unsigned i = 0; i < m_video->nb_streams; ++i)
        m_video->streams[i]->discard = int(i) == video ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    m_videoInput = m_video->streams[video];
    return {};
}

QString MixJob::openAudio(const QList<AudioTrack> &tracks)
{
    QString problem;
    for (const AudioTrack &track : tracks) {
        auto reader = std::make_unique<AudioReader>();
        QString reason;
        if (reader->open(track, &reason)) {
            m_mixer.add(std::move(reader), std::isfinite(track.gain) ? std::max(track.gain, 0.0) : 1.0);
            continue;
        }
        problem = QStringLiteral("Cannot read sound %1: %2").arg(track.path, reason);
        qCWarning(kel::logCodec).noquote() << "[MixAudioVideoTracks]" << problem;
    }
    if (!m_mixer.isEmpty())
        return {};
    if (problem.isEmpty() && !m_container.hasVideo)
        return QStringLiteral("There is no sound to write");
    return problem;
}

QString MixJob::openOutput()
{
    const QByteArray url = "file:" + m_path.toUtf8();
    AVFormatContext *context = nullptr;
    int code = avformat_alloc_output_context2(&context, nullptr, m_container.muxer, url.constData());
    m_output.reset(context);
    if (code >= 0) {
        context->interrupt_callback = m_interrupt;
        context->flags |= AVFMT_FLAG_BITEXACT; // gives WAV files the plain 44-byte header that our readers expect
        code = m_container.hasVideo ? addVideoStream() : 0;
    }
    if (code >= 0 && !m_mixer.isEmpty()) {
        QString problem;
        if (!m_encoder.open(m_container.audioCodec, context, &problem))
            return QStringLiteral("Cannot write sound: %1").arg(problem);
        m_left.resize(size_t(m_encoder.blockSize()));
        m_right.resize(m_left.size());
    }
    if (code >= 0)
        code = m_file.open(url, &m_interrupt);
    if (code >= 0) {
        context->pb = m_file.io();
        AVDictionary *options = nullptr;
        av_dict_set(&options, "movflags", "faststart", 0);
        code = result(avformat_write_header(context, &options));
        av_dict_free(&options);
    }
    return errorFor(code);
}

int MixJob::addVideoStream()
{
    m_videoOutput = avformat_new_stream(m_output.get(), nullptr);
    if (!m_videoOutput || !m_packet)
        return AVERROR(ENOMEM);
    m_videoOutput->time_base = m_videoInput->time_base;
    m_videoOutput->avg_frame_rate = m_videoInput->avg_frame_rate;
    m_videoOutput->sample_aspect_ratio = m_videoInput->sample_aspect_ratio;
    const int code = avcodec_parameters_copy(m_videoOutput->codecpar, m_videoInput->codecpar);
    m_videoOutput->codecpar->codec_tag = 0; // depends on the container
    return code;
}

QString MixJob::run()
{
    const bool isStill = m_videoInput->nb_frames == 1;
    m_expectedEnd = isStill ? m_mixer.expectedLength() : av_rescale(m_video->duration, kSample.den, AV_TIME_BASE);
    QString problem = copyVideo();
    if (problem.isEmpty() && !m_mixer.isEmpty())
        problem = finishAudio();
    if (problem.isEmpty())
        problem = errorFor(result(av_write_trailer(m_output.get())));
    if (problem.isEmpty())
        problem = errorFor(m_file.close());
    return problem;
}

/// Interleaves the audio that precedes each frame.
QString MixJob::copyVideo()
{
    for (;;) {
        int code = av_read_frame(m_video.get(), m_packet.get());
        if (code == AVERROR_EOF)
            return {};
        if (code < 0)
            return QStringLiteral("Cannot read the video: %1").arg(errorText(code));
        if (m_packet->stream_index == m_videoInput->index)
            code = writeVideoPacket();
        av_packet_unref(m_packet.get());
        if (code < 0)
            return errorFor(code);
    }
}

int MixJob::writeVideoPacket()
{
    AVPacket *packet = m_packet.get();
    const AVRational &timeBase = m_videoInput->time_base;
    const qint64 pts = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
    const AVRational &rate = m_videoInput->avg_frame_rate;
    if (packet->duration <= 0 && rate.num > 0)
        packet->duration = av_rescale_q(1, av_inv_q(rate), timeBase);
    m_videoEnd = std::max<qint64>(m_videoEnd, av_rescale_q(pts + packet->duration, timeBase, kSample));
    ++m_frameCount;
    const qint64 time = av_rescale_q(packet->dts != AV_NOPTS_VALUE ? packet->dts : pts, timeBase, kSample);
    if (!reportProgress(time))
        return AVERROR_EXIT;
    if (const int code = m_mixer.isEmpty() ? 0 : encodeUntil(time); code < 0 || !m_videoOutput)
        return code;
    packet->stream_index = m_videoOutput->index;
    packet->pos = -1;
    av_packet_rescale_ts(packet, timeBase, m_videoOutput->time_base);
    return result(av_interleaved_write_frame(m_output.get(), packet));
}

QString MixJob::finishAudio()
{
    const bool isStill = m_frameCount == 1;
    int code = isStill ? encodeAll() : 0;
    if (code >= 0 && isStill && m_position == 0 && !m_videoOutput)
        return QStringLiteral("There is no sound in the chosen range");
    if (code >= 0 && (!isStill || m_position == 0)) {
        code = encodeUntil(m_videoEnd);
        if (code >= 0 && m_position < m_videoEnd)
            code = encodeBlock(int(m_videoEnd - m_position));
    }
    if (code >= 0)
        code = result(m_encoder.finish());
    return errorFor(code);
}

/// Encodes whole blocks only.
int MixJob::encodeUntil(qint64 sample)
{
    int code = 0;
    while (code >= 0 && m_position + m_encoder.blockSize() <= sample)
        code = encodeBlock(m_encoder.blockSize());
    return code;
}

/// Encodes until the sources end.
int MixJob::encodeAll()
{
    const int block = m_encoder.blockSize();
    int encoded = block;
    int code = 0;
    while (code >= 0 && encoded == block)
        code = encodeBlock(block, &encoded);
    return code;
}

/// With `encoded`, stops where the sources end and returns the number of samples there.
int MixJob::encodeBlock(int count, int *encoded)
{
    const int available = m_mixer.read(m_left.data(), m_right.data(), count);
    if (encoded)
        *encoded = count = available;
    m_position += count;
    if (!reportProgress(m_position))
        return AVERROR_EXIT;
    return count == 0 ? 0 : result(m_encoder.encode(m_left.data(), m_right.data(), count));
}

/// Muxers ignore I/O errors of their output.
int MixJob::result(int code) const
{
    return code < 0 ? code : std::min(m_output->pb ? m_output->pb->error : 0, 0);
}

QString MixJob::errorFor(int code)
{
    if (m_isCancelled)
        return QLatin1String(kCancelled);
    if (code < 0)
        m_outputError = errorText(code);
    return m_outputError;
}

bool MixJob::reportProgress(qint64 sample)
{
    if (m_expectedEnd > 0) // audio and video alternate, so the share must not decrease
        m_share = std::clamp(double(sample) / double(m_expectedEnd), m_share, 1.0);
    m_isCancelled = m_isCancelled || (m_progress && !m_progress(m_share));
    return !m_isCancelled;
}

int MixJob::isInterrupted(void *job)
{
    auto *self = static_cast<MixJob *>(job);
    return self->reportProgress(self->m_position) ? 0 : 1;
}

} // namespace av
