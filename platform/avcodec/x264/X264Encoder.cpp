#include "avcodec/x264/X264Encoder.h"

#include "avcodec/x264/PlanarFrameConverter.h"
#include "logging/PlatformLog.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/log.h>
}

#include <QDebug>

#include <cstdarg>
#include <cstdlib>
#include <cstring>

namespace av
{

namespace
{

constexpr int kLengthBytes = 4; // before each NAL unit
constexpr int kMaxDimension = 16384;
constexpr int kMaxFps = 1000;

void logMessage(void *, int level, const char *format, va_list arguments)
{
    const QString text = QString::vasprintf(format, arguments).trimmed();
    if (level <= X264_LOG_ERROR)
        qCWarning(kel::logCodec).noquote() << "[X264Encoder]" << text;
    else
        qCDebug(kel::logCodec).noquote() << "[X264Encoder]" << text;
}

void appendParameterSet(QByteArray &record, const QByteArray &set)
{
    record.append(char(set.size() >> 8)).append(char(set.size())).append(set);
}

/// Whether FFmpeg's decoder accepts frames of this size, which it checks in whole macroblocks.
bool isDecodable(const QSize &size)
{
    const auto macroblocks = [](int side) { return unsigned(side + 15) / 16 * 16; };
    return av_image_check_size(macroblocks(size.width()), macroblocks(size.height()), AV_LOG_MAX_OFFSET, nullptr) >= 0;
}

} // namespace

x264_param_t X264Encoder::defaultParams(const char *preset, const char *tune, const QSize &size, int fps)
{
    x264_param_t param;
    x264_param_default_preset(&param, preset, tune);
    param.i_width = size.width();
    param.i_height = size.height();
    param.i_fps_num = uint32_t(fps);
    param.i_fps_den = 1;
    param.i_timebase_num = 1;
    param.i_timebase_den = uint32_t(fps);
    param.b_vfr_input = 0;
    param.b_annexb = 0;
    param.b_repeat_headers = 0;
    param.analyse.b_mb_info = 1;
    param.i_log_level = X264_LOG_WARNING;
    param.pf_log = logMessage;
    return param;
}

QString X264Encoder::limitError(const QSize &size, int fps)
{
    if (size.isEmpty() || size.width() > kMaxDimension || size.height() > kMaxDimension || !isDecodable(size))
        return QStringLiteral(
                   "Cannot encode frames of %1 x %2 pixels; the largest that can be decoded are 16384 x 16128")
            .arg(size.width())
            .arg(size.height());
    if (fps < 1 || fps > kMaxFps)
        return QStringLiteral("Cannot encode %1 frames per second").arg(fps);
    return {};
}

X264Encoder::X264Encoder(x264_param_t param)
    : m_colorSpace(param.i_csp)
    , m_macroblocks(std::size_t((param.i_width + 15) / 16) * std::size_t((param.i_height + 15) / 16))
{
    m_encoder.reset(x264_encoder_open(&param));
}

QByteArray X264Encoder::decoderConfiguration() const
{
    x264_nal_t *units = nullptr;
    int count = 0;
    if (!m_encoder || x264_encoder_headers(m_encoder.get(), &units, &count) < 0)
        return {};
    QByteArray sequenceSet;
    QByteArray pictureSet;
    for (int i = 0; i < count; ++i) {
        const QByteArray payload(reinterpret_cast<const char *>(units[i].p_payload) + kLengthBytes,
                                 units[i].i_payload - kLengthBytes);
        if (units[i].i_type == NAL_SPS)
            sequenceSet = payload;
        else if (units[i].i_type == NAL_PPS)
            pictureSet = payload;
    }
    if (sequenceSet.size() < 4 || pictureSet.isEmpty())
        return {};

    QByteArray record;
    record.append(char(1)).append(sequenceSet.mid(1, 3)); // version; profile, compatibility, level
    record.append(char(0xfc | (kLengthBytes - 1)));
    record.append(char(0xe0 | 1));
    appendParameterSet(record, sequenceSet);
    record.append(char(1));
    appendParameterSet(record, pictureSet);
    // The high profiles also state the chroma format and the bit depth (8).
    const bool is444 = (m_colorSpace & X264_CSP_MASK) == X264_CSP_I444;
    record.append(char(0xfc | (is444 ? 3 : 1))).append(char(0xf8)).append(char(0xf8)).append(char(0));
    return record;
}

bool X264Encoder::encode(const PlanarFrame &frame, qint64 pts, EncodedVideoFrame *encoded)
{
    x264_picture_t input;
    x264_picture_init(&input);
    input.i_pts = pts;
    input.img.i_csp = m_colorSpace;
    input.img.i_plane = int(frame.planes.size());
    for (std::size_t i = 0; i < frame.planes.size(); ++i) {
        input.img.plane[i] = const_cast<uint8_t *>(frame.planes[i].samples.data()); // read only
        input.img.i_stride[i] = frame.planes[i].stride;
    }
    // The encoder may keep this table longer than the call (lookahead), so it gets a copy.
    static_assert(X264_MBINFO_CONSTANT == 1, "the values of the table are those of x264");
    Q_ASSERT(frame.unchanged.size() == m_macroblocks);
    input.prop.mb_info = static_cast<uint8_t *>(std::malloc(m_macroblocks));
    input.prop.mb_info_free = std::free;
    if (!input.prop.mb_info)
        return false;
    std::memcpy(input.prop.mb_info, frame.unchanged.data(), m_macroblocks);
    return encode(&input, encoded);
}

bool X264Encoder::hasDelayedFrames() const
{
    return m_encoder && x264_encoder_delayed_frames(m_encoder.get()) > 0;
}

bool X264Encoder::flush(EncodedVideoFrame *encoded)
{
    return encode(nullptr, encoded);
}

bool X264Encoder::encode(x264_picture_t *input, EncodedVideoFrame *encoded)
{
    *encoded = {};
    x264_picture_t output;
    x264_nal_t *units = nullptr;
    int count = 0;
    const int size = x264_encoder_encode(m_encoder.get(), &units, &count, input, &output);
    if (size < 0)
        return false;
    if (size > 0)
        *encoded = {units[0].p_payload, size, output.i_pts, output.i_dts, output.b_keyframe != 0};
    return true;
}

} // namespace av
