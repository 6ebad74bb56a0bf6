#include "common/ComposedFrame.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QPainter>

#include <utility>

QSize recordedPixels(const KelPlaybackTrackManager &manager)
{
    return (QSizeF(manager.frameSize()) * manager.devicePixelRatio()).toSize();
}

QImage composedFrame(KelPlaybackTrackManager *manager, QImage previous)
{
    const QSize pixels = recordedPixels(*manager);
    if (pixels.isEmpty() || !manager->isValidRecording())
        return QImage();
    QImage image = std::move(previous);
    if (image.size() != pixels)
        image = QImage(pixels, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    if (!manager->isFrameCovered())
        image.fill(Qt::black); // clears what the previous frame left
    image.setDevicePixelRatio(manager->devicePixelRatio());
    QPainter painter(&image);
    manager->paint(&painter);
    return image;
}
