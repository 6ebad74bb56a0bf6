#pragma once

#include "avcodec/animation/AnimationFormat.h"

#include <QFile>
#include <QImage>

namespace av
{

/// Reads back, frame by frame, a file that ApngFormat has written or is still writing.
class ApngFrameReader
{
public:
    struct Frame {
        EncodedFrame encoded;
        int ticks = 0;
    };

    explicit ApngFrameReader(const QString &path);

    /// Reads the next frame. False at the end of the file and where it is damaged.
    bool next(Frame *frame);

    /// The complete image at the frame that was read last.
    const QImage &image() const { return m_image; }

private:
    bool readChunk(QByteArray *type, QByteArray *data);
    bool compose(const EncodedFrame &frame);

    QFile m_file;
    QByteArray m_transparency; // the tRNS chunk
    QImage m_image;
};

} // namespace av
