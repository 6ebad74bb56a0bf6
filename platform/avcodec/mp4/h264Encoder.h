#pragma once

#include "avcodec/KelAVCodecEncoder.h"

#include <QImage>
#include <QSize>
#include <QString>

#include <memory>

/// Encodes images as H.264 (High profile, 4:2:0, BT.709, limited range) into an MP4 file that any player opens and that
/// can be played while it is still being downloaded. Odd sizes are padded to even ones by repeating the last column
/// and row. A frame that equals the one before costs next to nothing. The frame rate is constant, as editors of video
/// expect it: a picture that is shown for several frames is a frame of its own each time.
///
/// Quality is x264's constant rate factor on a straight line: 100 is 10 (no difference to be seen even when zoomed in),
/// 90 is 14, 50 is 30, 0 is 50 (smallest). It is limited to 0 … 100. A file grows by about a third for every 10 steps.
class h264Encoder : public KelAVCodecEncoder
{
public:
    struct Params {
        QSize size;                                            ///< pixels of every image
        int inputFormat = QImage::Format_ARGB32_Premultiplied; ///< a QImage::Format; other images are converted
        QString path;                                          ///< the MP4 file; replaced when it exists
        int fps = 30;                                          ///< frame n is shown at n / fps seconds
        int quality = 90;                                      ///< 0 to 100, see above
    };

    explicit h264Encoder(const Params &params);
    ~h264Encoder() override;

    bool isValid() const override;

    bool waitForRoom(std::chrono::milliseconds limit) override;
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
