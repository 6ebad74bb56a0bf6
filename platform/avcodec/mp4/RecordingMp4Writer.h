#pragma once

#include "avcodec/mp4/Mp4Index.h"
#include "avcodec/mp4/Mp4Muxer.h"
#include "avcodec/mp4/MuxerBuffer.h"

#include <QFile>
#include <QString>

namespace av
{

/// Writes an MP4 file that is playable at every moment. While it grows it is a fragmented MP4, one fragment a picture,
/// and each picture is in the file when writeFrame() returns. close() makes it an ordinary MP4: it appends an index
/// of all pictures and hides the fragments' structure from readers:
///
///     growing  ftyp  free (16 bytes)                moov  moof mdat  moof mdat  …
///     closed   ftyp  mdat (64-bit size) [────────── all of that ──────────────]  moov
///
/// The file ends with the last whole fragment when a write fails, so that everything before stays playable.
class RecordingMp4Writer
{
public:
    /// Creates the file, replacing an older one.
    RecordingMp4Writer(const QString &path, const Mp4VideoTrack &track);

    /// False when a write failed, now or before: errorString() tells.
    bool writeFrame(const EncodedVideoFrame &picture);

    /// Completes the file. A file without pictures is removed. False on failure, before or now.
    bool close();

    /// The first failure, empty while there is none.
    QString errorString() const { return m_errorString; }

private:
    bool append(const QByteArray &data);
    bool finalizeAsPlainMp4(const QByteArray &index);
    bool fail(const QString &reason);

    QFile m_file;
    qint64 m_end = 0;         // of what is whole
    qint64 m_placeholder = 0; // position of the "free" box
    qint64 m_pictures = 0;
    QString m_errorString;
    MuxerBuffer m_window; // the next fragment
    Mp4Muxer m_fragments;
    Mp4Index m_index;
};

} // namespace av
