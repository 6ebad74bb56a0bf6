#include "avcodec/pngEncoder.h"

#include "avcodec/ApngFormat.h"

pngEncoder::pngEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra)
    : AnimationEncoder(size, path, fps, extra, std::make_unique<ApngFormat>(fps, quality))
{
}
