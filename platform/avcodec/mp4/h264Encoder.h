#pragma once

#include "avcodec/KelAVCodecEncoder.h"

#include <QImage>
#include <QSize>
#include <QString>

#include <memory>

/// Encodes images as H.264 (High profile, 4:2:0, BT.709, limited range) into an MP4 file that any player opens and that
/// can be played while it is downloaded. Odd sizes are padded to even ones by repeating the last column and row. The
/// frame rate is constant, as video editors expect: an image shown for several frames is encoded once per frame, at
/// hardly any cost.
///
/// Quality maps linearly to x264's constant rate factor: 100 is 10 (no visible difference even when zoomed in), 90 is
/// 14, 50 is 30, 0 is 50 (smallest). Values outside 0 to 100 are clamped. Every 10 steps add about a third to the file
/// size.
class h264Encoder : public KelAVCodecEncoder
{
public:
    struct Params {
        QSize size;                                            ///< pixels of every image, at most 16384 per side
        int inputFormat = QImage::Format_ARGB32_Premultiplied; ///< expected QImage::Format; others are converted
        QString path;                                          ///< the MP4 file; an existing one is replaced
        int fps = 30;                                          ///< 1 to 1000: frame n is shown at n / fps seconds
        int quality = 90;                                      ///< 0 to 100, see above
    };

    /// Creates the file. Errors: see isValid().
    explicit h264Encoder(const Params &params);
    ~h264Encoder() override;

    bool isValid() const override;

    bool waitForRoom(std::chrono::milliseconds timeout) override;
    bool addFrame(quint64 index, const QImage &image) override;
    bool repeatLastFrameUntil(quint64 end) override;
    bool close() override;
    void abort() override;
    quint64 framesWritten() const override;
    QString errorString() const override;

private:
    class Private;
    std::unique_ptr<Private> d;
};
