#include "export/KelExportSeams.h"

#include "avcodec/animation/gif/kelGifEncoder.h"
#include "avcodec/animation/png/pngEncoder.h"
#include "avcodec/animation/webp/webpEncoder.h"
#include "avcodec/mp4/h264Encoder.h"
#include "logging/Log.h"

#include <QDebug>
#include <QImage>

namespace
{

std::unique_ptr<KelAVCodecEncoder> createEncoder(int format, const QSize &size, const QString &path, int fps,
                                                 int quality, const QString &extra)
{
    switch (format) {
    case 0:
        return std::make_unique<h264Encoder>(
            h264Encoder::Params{size, QImage::Format_ARGB32_Premultiplied, path, fps, quality});
    case 1:
        return std::make_unique<kelGifEncoder>(size, path, fps, quality, extra);
    case 2:
        return std::make_unique<pngEncoder>(size, path, fps, quality, extra);
    case 3:
        return std::make_unique<webpEncoder>(size, path, fps, quality, extra);
    default:
        qCWarning(kel::logExport) << "Unsupported export format" << format;
        return nullptr;
    }
}

} // namespace

KelExportSeams KelExportSeams::real()
{
    return {::createEncoder};
}
