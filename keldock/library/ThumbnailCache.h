#pragma once

#include <QImage>
#include <QSize>
#include <QString>

/// Thumbnails of recordings in the user's cache folder. A thumbnail is outdated when its recording has been written to
/// since. Any thread.
class ThumbnailCache
{
public:
    /// The maximum size in pixels: twice the size in the list, for high-density screens.
    static constexpr QSize kMaxSize{320, 180};

    /// Null if there is none or it is outdated.
    static QImage find(const QString &dir);
    /// Scales an image file down to a thumbnail and caches that. Null if the file is not an image.
    static QImage store(const QString &dir, const QString &imageFile);
    /// Deletes the oldest thumbnails when there are too many.
    static void prune();

private:
    static QString path(const QString &dir);
};
