#include "avcodec/animation/webp/webpEncoder.h"

#include "avcodec/animation/webp/WebpFormat.h"

using namespace av;

webpEncoder::webpEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra)
    : AnimationEncoder(size, path, fps, extra, std::make_unique<WebpFormat>(quality))
{
}
