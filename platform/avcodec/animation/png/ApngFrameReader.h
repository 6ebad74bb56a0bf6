#pragma once

#include "avcodec/animation/AnimationFormat.h"

#include <QFile>
#include <QImage>

namespace av
{

/// Reads back, one by one, the frames of a file that ApngFormat has written or is writing.
class ApngFrameReader
{
public:
    struct Frame {
        EncodedFrame encoded;
        int ticks = 0;
    };

    explicit ApngFrameReader(const QString &path);

    /// False at the end and where the file is damaged.
    bool next(Frame *frame);

    /// What is seen during the frame that was read last.
    const QImage &picture() const { return m_picture; }

private:
    bool readChunk(QByteArray *type, QByteArray *data);
    bool show(const EncodedFrame &frame);

    QFile m_file;
    QByteArray m_transparency;
    QImage m_picture;
};

} // namespace av
