#include "export/KelExportDependencies.h"

#include "avcodec/animation/gif/kelGifEncoder.h"
#include "avcodec/animation/png/pngEncoder.h"
#include "avcodec/animation/webp/webpEncoder.h"
#include "avcodec/mp4/h264Encoder.h"
#include "logging/Log.h"

#include <KelMovie/KelExportRequest.h>

#include <QImage>

namespace
{

std::unique_ptr<KelAVCodecEncoder> createEncoder(int format, const QSize &size, const QString &path, int fps,
                                                 int quality, const QString &extra)
{
    switch (format) {
    case KelExportRequest::Mp4:
        return std::make_unique<h264Encoder>(
            h264Encoder::Params{size, QImage::Format_ARGB32_Premultiplied, path, fps, quality});
    case KelExportRequest::Gif:
        return std::make_unique<kelGifEncoder>(size, path, fps, quality, extra);
    case KelExportRequest::Apng:
        return std::make_unique<pngEncoder>(size, path, fps, quality, extra);
    case KelExportRequest::WebP:
        return std::make_unique<webpEncoder>(size, path, fps, quality, extra);
    default:
        qCWarning(kel::logExport) << "Unsupported export format" << format;
        return nullptr;
    }
}

} // namespace

KelExportDependencies KelExportDependencies::real()
{
    return {::createEncoder};
}
