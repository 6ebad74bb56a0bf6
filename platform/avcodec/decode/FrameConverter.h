#pragma once

#include "avcodec/decode/ImagePool.h"
#include "avcodec/ffmpeg/AvHandles.h"

#include <QImage>

namespace av
{

/// Converts decoded frames to images of QImage::Format_RGB32. Alpha is ignored.
class FrameConverter
{
public:
    /// A null image if the frame cannot be converted.
    QImage convert(const AVFrame &frame);

private:
    bool scale(const AVFrame &frame, QImage &image);

    ImagePool m_pool;
    ScaleContext m_scaler;
};

} // namespace av
