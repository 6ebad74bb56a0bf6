#pragma once

#include <QImage>
#include <QSize>
#include <QString>

/// Small pictures of recordings in the user's cache. One is valid as long as its recording has not been written to
/// since. Any thread.
class ThumbnailCache
{
public:
    /// In pixels; a thumbnail fits into it. Twice what a list shows, for screens with small pixels.
    static constexpr QSize Size{320, 180};

    /// Null when there is none, or an outdated one.
    static QImage find(const QString &dir);
    /// Makes a thumbnail of a large picture and keeps it. Null when that is no picture.
    static QImage store(const QString &dir, const QString &pictureFile);
    /// Deletes the oldest ones beyond a bound.
    static void prune();

private:
    static QString path(const QString &dir);
};
