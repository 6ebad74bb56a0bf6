#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QtGlobal>

#include <cstdint> // x264.h uses its types but does not include it

extern "C" {
#include <x264.h>
}

#include <memory>

namespace av
{

struct PlanarFrame;

/// An encoded video frame: H.264 NAL units with four-byte lengths, as MP4 stores them.
struct EncodedVideoFrame {
    const uint8_t *data = nullptr; ///< owned by the encoder; valid until its next call
    int size = 0;                  ///< bytes; 0: no frame
    qint64 pts = 0;                ///< frame number in presentation order
    qint64 dts = 0;                ///< frame number in decoding order
    bool isKeyframe = false;
};

/// Owner of a libx264 encoder. Not thread-safe.
class X264Encoder
{
public:
    /// Common parameters of all encoders; timestamps count frames.
    static x264_param_t defaultParams(const char *preset, const char *tune, const QSize &size, int fps);

    /// Why frames of this size and rate cannot be encoded, in English; empty if they can.
    static QString limitError(const QSize &size, int fps);

    /// Opens the encoder.
    explicit X264Encoder(x264_param_t param);

    bool isValid() const { return m_encoder != nullptr; }

    /// The "avcC" record: profile, level and parameter sets.
    QByteArray decoderConfiguration() const;

    /// Encodes a frame. The output may be empty or an earlier frame. False if the encoder fails.
    bool encode(const PlanarFrame &frame, qint64 pts, EncodedVideoFrame *encoded);

    /// The encoder holds back frames that flush() returns.
    bool hasDelayedFrames() const;

    /// Returns one of the frames held back. False if the encoder fails.
    bool flush(EncodedVideoFrame *encoded);

private:
    bool encode(x264_picture_t *input, EncodedVideoFrame *encoded);

    struct Closer {
        void operator()(x264_t *encoder) const { x264_encoder_close(encoder); }
    };
    const int m_colorSpace;
    const std::size_t m_macroblocks;
    std::unique_ptr<x264_t, Closer> m_encoder;
};

} // namespace av
