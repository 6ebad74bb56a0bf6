#include "avcodec/animation/gif/kelGifEncoder.h"

#include "avcodec/animation/gif/GifFormat.h"

using namespace av;

kelGifEncoder::kelGifEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra)
    : AnimationEncoder(size, path, fps, extra, std::make_unique<GifFormat>(quality))
{
}
