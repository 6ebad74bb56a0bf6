#include "avcodec/decode/FrameConverter.h"

#include <QtEndian>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace av
{

namespace
{

constexpr quint32 kOpaque = 0xff000000U;

// Each converts one row in a loop that the compiler can vectorize.
void packPlanes(quint32 *__restrict out, const uchar *__restrict red, const uchar *__restrict green,
                const uchar *__restrict blue, int width)
{
    for (int x = 0; x < width; ++x)
        out[x] = kOpaque | quint32(red[x]) << 16 | quint32(green[x]) << 8 | blue[x];
}

void copyOpaque(quint32 *__restrict out, const quint32 *__restrict in, int width)
{
    for (int x = 0; x < width; ++x)
        out[x] = kOpaque | in[x];
}

template <typename T = uchar>
const T *row(const AVFrame &frame, int plane, int y)
{
    return reinterpret_cast<const T *>(frame.data[plane] + qptrdiff(y) * frame.linesize[plane]);
}

quint32 *row(QImage &image, int y)
{
    return reinterpret_cast<quint32 *>(image.scanLine(y));
}

/// Replaces the deprecated formats that imply full range.
AVPixelFormat plainFormat(const AVFrame &frame)
{
    switch (frame.format) {
    case AV_PIX_FMT_YUVJ420P:
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P:
        return AV_PIX_FMT_YUV444P;
    default:
        return static_cast<AVPixelFormat>(frame.format);
    }
}

bool isFullRange(const AVFrame &frame)
{
    return plainFormat(frame) != frame.format || frame.color_range == AVCOL_RANGE_JPEG;
}

int matrixOf(const AVFrame &frame)
{
    switch (frame.colorspace) {
    case AVCOL_SPC_BT709:
        return SWS_CS_ITU709;
    case AVCOL_SPC_FCC:
        return SWS_CS_FCC;
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
        return SWS_CS_ITU601;
    case AVCOL_SPC_SMPTE240M:
        return SWS_CS_SMPTE240M;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return SWS_CS_BT2020;
    default: // unspecified: what players assume
        return frame.height >= 720 ? SWS_CS_ITU709 : SWS_CS_ITU601;
    }
}

} // namespace

QImage FrameConverter::convert(const AVFrame &frame)
{
    QImage image = m_pool.image(QSize(frame.width, frame.height), QImage::Format_RGB32);
    if (image.isNull())
        return image;
    switch (frame.format) {
    case AV_PIX_FMT_GBRP:
        for (int y = 0; y < frame.height; ++y)
            packPlanes(row(image, y), row(frame, 2, y), row(frame, 0, y), row(frame, 1, y), frame.width);
        return image;
    case AV_PIX_FMT_RGB32: // 32-bit words in native byte order, like QImage
    case AV_PIX_FMT_0RGB32:
        for (int y = 0; y < frame.height; ++y)
            copyOpaque(row(image, y), row<quint32>(frame, 0, y), frame.width);
        return image;
    default:
        return scale(frame, image) ? image : QImage();
    }
}

bool FrameConverter::scale(const AVFrame &frame, QImage &image)
{
    // With subsampled chroma, the library's vectorized conversion is off by 3 levels at most and takes a sixteenth of
    // the time of the exact one. Otherwise only the exact one keeps the full chroma resolution.
    const AVPixFmtDescriptor *const layout = av_pix_fmt_desc_get(plainFormat(frame));
    const bool isSubsampled = layout && layout->log2_chroma_w > 0;
    const int flags = SWS_BILINEAR | (isSubsampled ? 0 : SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT);
    m_scaler.reset(sws_getCachedContext(m_scaler.release(), frame.width, frame.height, plainFormat(frame), frame.width,
                                        frame.height, AV_PIX_FMT_0RGB32, flags, nullptr, nullptr, nullptr));
    if (!m_scaler)
        return false;
    constexpr int kOne = 1 << 16; // fixed-point contrast and saturation
    sws_setColorspaceDetails(m_scaler.get(), sws_getCoefficients(matrixOf(frame)), isFullRange(frame),
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, kOne, kOne);
    uchar *const planes[] = {image.bits()};
    const int strides[] = {static_cast<int>(image.bytesPerLine())};
    return sws_scale(m_scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, strides) == frame.height;
}

} // namespace av
