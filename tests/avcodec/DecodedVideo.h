#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QByteArray>
#include <QImage>
#include <QString>

#include <vector>

constexpr double kLossless = 99;

/// Color in BT.709 with limited range, as the standard defines it.
struct Yuv {
    double y, cb, cr;

    static Yuv of(QRgb pixel);
};

/// A video, GIF or APNG file read with libavformat and libavcodec alone, for testing the encoders.
class DecodedVideo
{
public:
    explicit DecodedVideo(const QString &path);

    /// Why the file could not be read; empty if all of it could.
    QString errorString;

    std::vector<av::Frame> frames;   ///< as decoded
    std::vector<qint64> times;       ///< presentation time of each frame, in frames
    std::vector<bool> keyframes;     ///< whether each packet is a keyframe
    std::vector<double> durationsMs; ///< of each packet
    qint64 statedFrames = 0;         ///< number of frames stated by the file
    double fps = 0;
    AVColorSpace containerColorSpace = AVCOL_SPC_UNSPECIFIED;
    AVColorRange containerColorRange = AVCOL_RANGE_UNSPECIFIED;

    /// Frame of an RGB video.
    QImage rgbImage(int index) const;

    /// A sample of a plane.
    int sample(int frame, int plane, int x, int y) const;

    /// Peak signal to noise ratio of a frame's luma in dB, at most kLossless, with the coefficients of HDTV.
    double lumaPsnr(int frame, const QImage &wanted) const;

private:
    QString read(const QString &path);
};

/// The types of an MP4 file's top-level boxes in order, followed by "?" if they do not cover the file exactly.
QList<QByteArray> mp4Boxes(const QString &path);

/// Peak signal to noise ratio over red, green and blue in dB, at most kLossless.
double psnr(const QImage &a, const QImage &b);

/// Dense colored text in a small font; consecutive numbers scroll by a few lines.
QImage textImage(const QSize &size, int number);
