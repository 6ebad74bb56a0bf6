#include "avcodec/kelGifEncoder.h"

#include "avcodec/GifFormat.h"

kelGifEncoder::kelGifEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra)
    : AnimationEncoder(size, path, fps, extra, std::make_unique<GifFormat>(quality))
{
}
