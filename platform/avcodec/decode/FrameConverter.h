#pragma once

#include "avcodec/decode/ImagePool.h"
#include "avcodec/ffmpeg/AvHandles.h"

#include <QImage>

namespace av
{

/// Turns decoded frames into images of QImage::Format_RGB32: video is opaque, whatever its fourth channel says.
class FrameConverter
{
public:
    /// A null image when the frame cannot be converted.
    QImage convert(const AVFrame &frame);

private:
    bool scale(const AVFrame &frame, QImage &image);

    ImagePool m_pool;
    av::ScaleContext m_scaler;
};

} // namespace av
