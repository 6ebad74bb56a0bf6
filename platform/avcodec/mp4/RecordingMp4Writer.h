#pragma once

#include "avcodec/OutputFile.h"
#include "avcodec/ffmpeg/MuxerBuffer.h"
#include "avcodec/mp4/Mp4Index.h"
#include "avcodec/mp4/Mp4Muxer.h"

#include <QString>

namespace av
{

/// Writes an MP4 file that can be played at any time while it grows. It is a fragmented MP4 with one fragment per
/// frame; each frame is in the file when writeFrame() returns. close() turns it into a plain MP4: it appends an index
/// of all frames and hides the fragments from readers by enclosing them in one box:
///
///     growing  ftyp  free (16 bytes)                moov  moof mdat  moof mdat  …
///     closed   ftyp  mdat (64-bit size) [────────── all of that ──────────────]  moov
///
/// If a write fails, the file is truncated after the last complete fragment, so that everything before stays playable.
class RecordingMp4Writer
{
public:
    /// Creates the file, replacing an existing one.
    RecordingMp4Writer(const QString &path, const Mp4VideoTrack &track);

    /// False if this or an earlier write has failed; see errorString().
    bool writeFrame(const EncodedVideoFrame &frame);

    /// Finishes the file. A file without frames is deleted. False if this or an earlier write has failed.
    bool close();

    /// The first error; empty if there was none.
    QString errorString() const { return m_errorString; }

private:
    bool append(const QByteArray &data);
    bool finalizeAsPlainMp4(const QByteArray &index);
    bool fail(const QString &text);
    bool failToWrite(const QString &reason);

    OutputFile m_file;
    qint64 m_placeholder = 0; // position of the "free" box
    qint64 m_frames = 0;
    QString m_errorString;
    MuxerBuffer m_fragment; // the next fragment
    Mp4Muxer m_muxer;
    Mp4Index m_index;
};

} // namespace av
