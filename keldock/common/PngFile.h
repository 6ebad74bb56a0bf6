#pragma once

#include <QImage>
#include <QString>

/// Writes `image` as PNG to `path`, replacing an existing file once the new one is complete. Returns an empty string,
/// or the error in English; an existing file is then unchanged.
QString savePng(const QImage &image, const QString &path);
