#include "avcodec/animation/png/pngEncoder.h"

#include "avcodec/animation/png/ApngFormat.h"

using namespace av;

pngEncoder::pngEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra)
    : AnimationEncoder(size, path, fps, extra, std::make_unique<ApngFormat>(fps, quality))
{
}
