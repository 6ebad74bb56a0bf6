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

/// One picture, encoded: H.264 NAL units with four-byte lengths, as MP4 stores them.
struct EncodedVideoFrame {
    const uint8_t *data = nullptr; ///< owned by the encoder, until its next call
    int size = 0;                  ///< 0: there is no picture
    qint64 pts = 0;
    qint64 dts = 0;
    bool isKeyframe = false;
};

/// Owner of one libx264 encoder. One thread at a time.
class X264Encoder
{
public:
    /// What all encoders here have in common, for the frames' size and rate; time stamps count frames.
    static x264_param_t defaultParams(const char *preset, const char *tune, const QSize &size, int fps);

    /// Why pictures of this size and rate cannot be encoded, in English; empty when they can.
    static QString limitError(const QSize &size, int fps);

    /// Opens the encoder.
    explicit X264Encoder(x264_param_t param);

    bool isValid() const { return m_encoder != nullptr; }

    /// The "avcC" record: profile, level and the parameter sets.
    QByteArray decoderConfiguration() const;

    /// Encodes a frame. False when the encoder failed. The picture may be empty or an earlier one's.
    bool encode(const PlanarFrame &frame, qint64 pts, EncodedVideoFrame *picture);

    /// The encoder holds back pictures that flush() delivers.
    bool hasDelayedFrames() const;

    /// Delivers one picture that was held back.
    bool flush(EncodedVideoFrame *picture);

private:
    bool encode(x264_picture_t *input, EncodedVideoFrame *picture);

    struct Closer {
        void operator()(x264_t *encoder) const { x264_encoder_close(encoder); }
    };
    const int m_colorSpace;
    const std::size_t m_macroblocks;
    std::unique_ptr<x264_t, Closer> m_encoder;
};

} // namespace av
