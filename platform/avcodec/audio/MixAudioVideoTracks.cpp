#include "avcodec/audio/MixAudioVideoTracks.h"

#include "avcodec/audio/AudioEncoder.h"
#include "avcodec/audio/AudioMixer.h"
#include "avcodec/audio/MixContainer.h"
#include "avcodec/ffmpeg/AvHandles.h"
#include "avcodec/ffmpeg/InputFile.h"
#include "avcodec/ffmpeg/MuxerFile.h"

#include "files/RenameOver.h"
#include "logging/PlatformLog.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>

using namespace av;

namespace
{

constexpr const char *kVideoFormats = "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm";
constexpr AVRational kSample{1, AudioEncoder::kSampleRate};
constexpr QLatin1String kCancelled("Cancelled");

/// One mix into a file that nobody else sees yet.
class MixJob
{
public:
    MixJob(const MixContainer &container, const QString &path, const MixProgress &progress);

    /// Each answers an English reason, or nothing when all is well.
    QString open(const QString &videoPath, const QList<AudioTrack> &tracks);
    QString run();

private:
    QString openVideo(const QString &path);
    QString openSound(const QList<AudioTrack> &tracks);
    QString openOutput();
    QString copyPictures();
    QString finishSound();
    int addPictureStream();
    int writeFrame();
    int encodeUntil(qint64 sample);
    int encodeAll();
    int encodeBlock(int count, int *sound = nullptr);
    int result(int code) const;
    QString failure(int code) const;
    bool goesOn(qint64 sample);
    static int isInterrupted(void *job);

    const MixContainer &m_container;
    const QString m_path;
    const MixProgress &m_progress;
    const AVIOInterruptCB m_interrupt{&MixJob::isInterrupted, this};
    bool m_isCancelled = false;

    av::FormatContext m_video;
    AVStream *m_pictures = nullptr; // owned by m_video
    av::Packet m_packet;
    qint64 m_pictureCount = 0;
    qint64 m_pictureEnd = 0; // in samples

    AudioMixer m_mix;
    AudioEncoder m_encoder;
    std::vector<float> m_left;
    std::vector<float> m_right;
    qint64 m_position = 0; // in samples
    qint64 m_expectedEnd = 0;
    double m_share = 0.0;

    MuxerFile m_file; // outlives the muxer
    av::FormatContext m_output;
    AVStream *m_copies = nullptr; // owned by m_output; null without a picture
};

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
        problem = openSound(tracks);
    if (problem.isEmpty())
        problem = openOutput();
    return problem;
}

QString MixJob::openVideo(const QString &path)
{
    QString problem;
    // To copy the pictures, nothing needs to be known that only decoding tells: of a huge one that takes seconds.
    m_video = av::openContainer(path, kVideoFormats, &problem);
    if (!m_video)
        return QStringLiteral("Cannot read video %1: %2").arg(path, problem);
    const int video = av_find_best_stream(m_video.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (video < 0)
        return QStringLiteral("Cannot read video %1: no video in the file").arg(path);
    for (unsigned i = 0; i < m_video->nb_streams; ++i)
        m_video->streams[i]->discard = int(i) == video ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    m_pictures = m_video->streams[video];
    return {};
}

QString MixJob::openSound(const QList<AudioTrack> &tracks)
{
    QString problem;
    for (const AudioTrack &track : tracks) {
        auto reader = std::make_unique<AudioReader>();
        QString reason;
        if (reader->open(track, &reason)) {
            m_mix.add(std::move(reader), std::isfinite(track.gain) ? std::max(track.gain, 0.0) : 1.0);
            continue;
        }
        problem = QStringLiteral("Cannot read sound %1: %2").arg(track.path, reason);
        qCWarning(kel::logCodec).noquote() << "[MixAudioVideoTracks]" << problem;
    }
    if (!m_mix.isEmpty())
        return {};
    if (problem.isEmpty() && !m_container.hasPicture)
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
        context->flags |= AVFMT_FLAG_BITEXACT; // a WAV file then has the plain header that all our readers know
        code = m_container.hasPicture ? addPictureStream() : 0;
    }
    if (code >= 0 && !m_mix.isEmpty()) {
        QString problem;
        if (!m_encoder.open(m_container.soundCodec, context, &problem))
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
    return failure(code);
}

int MixJob::addPictureStream()
{
    m_copies = avformat_new_stream(m_output.get(), nullptr);
    if (!m_copies || !m_packet)
        return AVERROR(ENOMEM);
    m_copies->time_base = m_pictures->time_base;
    m_copies->avg_frame_rate = m_pictures->avg_frame_rate;
    m_copies->sample_aspect_ratio = m_pictures->sample_aspect_ratio;
    const int code = avcodec_parameters_copy(m_copies->codecpar, m_pictures->codecpar);
    m_copies->codecpar->codec_tag = 0; // each container has its own
    return code;
}

QString MixJob::run()
{
    const bool isStill = m_pictures->nb_frames == 1;
    m_expectedEnd = isStill ? m_mix.expectedLength() : av_rescale(m_video->duration, kSample.den, AV_TIME_BASE);
    QString problem = copyPictures();
    if (problem.isEmpty() && !m_mix.isEmpty())
        problem = finishSound();
    if (problem.isEmpty())
        problem = failure(result(av_write_trailer(m_output.get())));
    if (problem.isEmpty())
        problem = failure(m_file.close());
    return problem;
}

/// With the sound that belongs before each picture.
QString MixJob::copyPictures()
{
    for (;;) {
        int code = av_read_frame(m_video.get(), m_packet.get());
        if (code == AVERROR_EOF)
            return {};
        if (code < 0)
            return QStringLiteral("Cannot read the video: %1").arg(av::errorText(code));
        if (m_packet->stream_index == m_pictures->index)
            code = writeFrame();
        av_packet_unref(m_packet.get());
        if (code < 0)
            return failure(code);
    }
}

int MixJob::writeFrame()
{
    AVPacket *packet = m_packet.get();
    const AVRational &unit = m_pictures->time_base;
    const qint64 shown = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
    const AVRational &rate = m_pictures->avg_frame_rate;
    if (packet->duration <= 0 && rate.num > 0)
        packet->duration = av_rescale_q(1, av_inv_q(rate), unit);
    m_pictureEnd = std::max<qint64>(m_pictureEnd, av_rescale_q(shown + packet->duration, unit, kSample));
    ++m_pictureCount;
    const qint64 time = av_rescale_q(packet->dts != AV_NOPTS_VALUE ? packet->dts : shown, unit, kSample);
    if (!goesOn(time))
        return AVERROR_EXIT;
    if (const int code = m_mix.isEmpty() ? 0 : encodeUntil(time); code < 0 || !m_copies)
        return code;
    packet->stream_index = m_copies->index;
    packet->pos = -1;
    av_packet_rescale_ts(packet, unit, m_copies->time_base);
    return result(av_interleaved_write_frame(m_output.get(), packet));
}

QString MixJob::finishSound()
{
    const bool isStill = m_pictureCount == 1;
    int code = isStill ? encodeAll() : 0;
    if (code >= 0 && isStill && m_position == 0 && !m_copies)
        return QStringLiteral("There is no sound in the chosen range");
    if (code >= 0 && (!isStill || m_position == 0)) {
        code = encodeUntil(m_pictureEnd);
        if (code >= 0 && m_position < m_pictureEnd)
            code = encodeBlock(int(m_pictureEnd - m_position));
    }
    if (code >= 0)
        code = result(m_encoder.finish());
    return failure(code);
}

/// In whole blocks.
int MixJob::encodeUntil(qint64 sample)
{
    int code = 0;
    while (code >= 0 && m_position + m_encoder.blockSize() <= sample)
        code = encodeBlock(m_encoder.blockSize());
    return code;
}

/// As long as there is sound.
int MixJob::encodeAll()
{
    const int block = m_encoder.blockSize();
    int sound = block;
    int code = 0;
    while (code >= 0 && sound == block)
        code = encodeBlock(block, &sound);
    return code;
}

/// With `sound`, no more is encoded than there is, which it then tells.
int MixJob::encodeBlock(int count, int *sound)
{
    const int available = m_mix.read(m_left.data(), m_right.data(), count);
    if (sound)
        *sound = count = available;
    m_position += count;
    if (!goesOn(m_position))
        return AVERROR_EXIT;
    return count == 0 ? 0 : result(m_encoder.encode(m_left.data(), m_right.data(), count));
}

/// A muxer goes on when its output has failed.
int MixJob::result(int code) const
{
    return code < 0 ? code : std::min(m_output->pb ? m_output->pb->error : 0, 0);
}

QString MixJob::failure(int code) const
{
    if (m_isCancelled)
        return kCancelled;
    return code < 0 ? QStringLiteral("Cannot write the mix: %1").arg(av::errorText(code)) : QString();
}

bool MixJob::goesOn(qint64 sample)
{
    if (m_expectedEnd > 0) // pictures and sound take turns in leading
        m_share = std::clamp(double(sample) / double(m_expectedEnd), m_share, 1.0);
    m_isCancelled = m_isCancelled || (m_progress && !m_progress(m_share));
    return !m_isCancelled;
}

int MixJob::isInterrupted(void *job)
{
    auto *self = static_cast<MixJob *>(job);
    return self->goesOn(self->m_position) ? 0 : 1;
}

/// Mixes into a directory of its own beside the output, so that nothing can be put in the file's place and so that it
/// can take its final name in one step.
QString mixInto(const QFileInfo &target, const QString &videoPath, const QList<AudioTrack> &tracks,
                const MixProgress &progress)
{
    const QString path = target.filePath();
    const MixContainer *container = MixContainer::ofFile(path);
    if (!container)
        return QStringLiteral("No sound can be written to a file of type \"%1\"").arg(target.suffix());
    if (target.exists() && !target.isFile())
        return QStringLiteral("Not a regular file: %1").arg(path);
    const QTemporaryDir dir(target.path() + "/.kel_mix_XXXXXX");
    if (!dir.isValid())
        return QStringLiteral("Cannot write %1: %2").arg(path, dir.errorString());
    const QString mixed = dir.filePath(QStringLiteral("mix.") + QLatin1String(container->suffix));
    {
        MixJob job(*container, mixed, progress);
        QString problem = job.open(videoPath, tracks);
        if (problem.isEmpty())
            problem = job.run();
        if (!problem.isEmpty())
            return problem;
    }
    if (target.exists())
        QFile::setPermissions(mixed, target.permissions());
    const QString problem = kel::renameOver(mixed, path);
    return problem.isEmpty() ? QString() : QStringLiteral("Cannot write %1: %2").arg(path, problem);
}

} // namespace

bool canMixInto(const QString &path)
{
    return MixContainer::ofFile(path) != nullptr;
}

bool MixAudioVideoTracks(const QString &videoPath, const QList<AudioTrack> &tracks, const QString &outputPath,
                         const MixProgress &progress, QString *error)
{
    const QFileInfo output(outputPath);
    // What a link points to is replaced, not the link.
    const QFileInfo target(output.exists() ? output.canonicalFilePath() : outputPath);
    const QString problem = mixInto(target, videoPath, tracks, progress);
    if (!problem.isEmpty() && problem != kCancelled)
        qCWarning(kel::logCodec).noquote() << "[MixAudioVideoTracks]" << problem;
    if (error)
        *error = problem;
    return problem.isEmpty();
}
