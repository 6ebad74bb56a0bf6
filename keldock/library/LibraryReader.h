#pragma once

#include "library/RecordingDetails.h"

#include <QObject>

/// Reads the disk for the list of recordings. Lives on a thread of its own: a slow disk never holds up a window.
class LibraryReader : public QObject
{
    Q_OBJECT

public slots:
    void scan(const QString &root);
    void read(const QString &dir);
    /// Keeps `pictureFile`, which is deleted, as the recording's thumbnail.
    void takePicture(const QString &dir, const QString &pictureFile);

signals:
    void scanned(const QVector<RecordingsFolder::Entry> &entries);
    void detailsRead(const QString &dir, const RecordingDetails &details);
    void thumbnailMade(const QString &dir, const QImage &thumbnail);
};
