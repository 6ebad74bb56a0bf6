#pragma once

#include "avcodec/audio/AudioEncoder.h"
#include "avcodec/audio/AudioMixer.h"
#include "avcodec/audio/MixAudioVideoTracks.h"
#include "avcodec/audio/MixContainer.h"
#include "avcodec/ffmpeg/AvHandles.h"
#include "avcodec/ffmpeg/MuxerFile.h"

#include <QList>
#include <QString>

#include <vector>

namespace av
{

/// Copies the video of a file and encodes the mixed audio into a new file. On failure an incomplete file is left.
class MixJob
{
public:
    /// The error of a cancelled job.
    static constexpr char kCancelled[] = "Cancelled";

    /// Container and progress function must outlive the job.
    MixJob(const MixContainer &container, const QString &path, const MixProgress &progress);

    /// Opens the inputs and the output. Returns an error in English; empty on success.
    QString open(const QString &videoPath, const QList<AudioTrack> &tracks);

    /// Writes the output. Call once, after open() has succeeded. Returns an error in English; empty on success.
    QString run();

    /// Why the output cannot be written, in English, if that is what open() or run() failed at.
    QString outputError() const { return m_outputError; }

private:
    QString openVideo(const QString &path);
    QString openAudio(const QList<AudioTrack> &tracks);
    QString openOutput();
    int addVideoStream();
    QString copyVideo();
    int writeVideoPacket();
    QString finishAudio();
    int encodeUntil(qint64 sample);
    int encodeAll();
    int encodeBlock(int count, int *encoded = nullptr);
    int result(int code) const;
    QString errorFor(int code);
    bool reportProgress(qint64 sample);
    static int isInterrupted(void *job);

    const MixContainer &m_container;
    const QString m_path;
    const MixProgress &m_progress;
    const AVIOInterruptCB m_interrupt{&MixJob::isInterrupted, this};
    bool m_isCancelled = false;
    QString m_outputError;

    FormatContext m_video;
    AVStream *m_videoInput = nullptr; // owned by m_video
    Packet m_packet;
    qint64 m_frameCount = 0;
    qint64 m_videoEnd = 0; // in samples

    AudioMixer m_mixer;
    AudioEncoder m_encoder;
    std::vector<float> m_left;
    std::vector<float> m_right;
    qint64 m_position = 0; // of the audio, in samples
    qint64 m_expectedEnd = 0;
    double m_share = 0.0;

    MuxerFile m_file; // outlives the muxer
    FormatContext m_output;
    AVStream *m_videoOutput = nullptr; // owned by m_output; null without video
};

} // namespace av
