#pragma once

#include "avcodec/KelAVCodecEncoder.h"

#include <QSize>

#include <memory>

/// `format`: "gif", "png" or "webp".
std::unique_ptr<KelAVCodecEncoder> makeAnimationEncoder(const QString &format, QSize size, const QString &path, int fps,
                                                        int quality, const QString &extra = {});

/// A frame of a small scene: patches of at most 200 colors come and go in different places, with pauses in which
/// nothing changes, and now and then everything changes.
QImage patches(QSize size, int frame);

/// Every pixel has a random color.
QImage noise(QSize size, uint seed);

/// Smooth gradients of many colors, as in a photograph; consecutive frames are scrolled.
QImage landscape(QSize size, int frame);

/// The table of a test of all formats, with the column "format".
void addAnimationFormats();
