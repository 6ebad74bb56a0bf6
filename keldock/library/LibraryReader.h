#pragma once

#include "library/RecordingDetails.h"

#include <QObject>

/// Reads recordings from disk for RecordingsModel, on a worker thread, so that a slow disk never blocks a window.
class LibraryReader : public QObject
{
    Q_OBJECT

public slots:
    /// Emits scanned().
    void scan(const QString &root);
    /// Emits detailsRead().
    void read(const QString &dir);
    /// Makes and caches the thumbnail of a recording from an image file, which is deleted. Emits thumbnailMade().
    void makeThumbnail(const QString &dir, const QString &imageFile);

signals:
    void scanned(const QVector<RecordingsFolder::Entry> &entries);
    void detailsRead(const QString &dir, const RecordingDetails &details);
    /// `thumbnail` is null on failure.
    void thumbnailMade(const QString &dir, const QImage &thumbnail);
};
