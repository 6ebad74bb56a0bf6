#include "play/ComposedPicture.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QPainter>

#include <utility>

QImage composedPicture(KelPlaybackTrackManager *manager, QImage previous)
{
    const double ratio = manager->devicePixelRatio();
    const QSize pixels = (QSizeF(manager->pictureSize()) * ratio).toSize();
    if (pixels.isEmpty() || !manager->isValidRecording())
        return QImage();
    QImage image = std::move(previous);
    if (image.size() != pixels)
        image = QImage(pixels, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    if (!manager->isPictureCovered())
        image.fill(Qt::black); // or what moves would leave a trail
    image.setDevicePixelRatio(ratio);
    QPainter painter(&image);
    manager->paint(&painter);
    return image;
}
