#pragma once

#include "avcodec/KelAVCodecEncoder.h"

#include <QSize>

#include <memory>

/// "gif", "png" or "webp".
std::unique_ptr<KelAVCodecEncoder> makeAnimationEncoder(const QString &format, QSize size, const QString &path, int fps,
                                                        int quality, const QString &extra = {});

/// The picture of a small scene at a frame: patches of at most 200 colors come and go in different places, there are
/// stretches where nothing happens, and sometimes everything changes.
QImage patches(QSize size, int frame);

/// Every pixel has a color of its own by chance.
QImage noise(QSize size, uint seed);

/// Many colors that flow into each other, as in a photograph; the frames of one scene are scrolled.
QImage landscape(QSize size, int frame);
