#pragma once

#include <QMap>
#include <QPixmap>
#include <QPoint>
#include <QString>

namespace kel
{

/// Writes the pointer shapes of a recording: a PNG of each in "cursors" and their list, "cursor.json". One thread at a
/// time.
class CursorListWriter
{
public:
    explicit CursorListWriter(const QString &trackDir);

    bool contains(const QString &id) const { return m_cursors.contains(id); }

    /// Adds a shape and saves its image at once, so that any record that refers to it finds the image. The list is
    /// out of date until it is written. `hotspot` is in pixels of the image. False when the image cannot be saved.
    bool add(const QString &id, const QPixmap &image, const QPoint &hotspot);

    /// Whether the list on disk holds every shape added so far.
    bool isListCurrent() const { return m_isListCurrent; }

    /// Replaces the list in one step. False when that fails; the earlier list is then kept.
    bool writeList();

    /// The file that could not be written and why, in English, after a call that returned false.
    QString failedPath() const { return m_failedPath; }
    QString errorString() const { return m_error; }

private:
    struct Cursor {
        QPoint hotspot;
        qreal devicePixelRatio;
    };

    const QString m_listPath;
    const QString m_imageDir;
    QMap<QString, Cursor> m_cursors; // by id, which is the order of the list
    bool m_isListCurrent = false;
    QString m_failedPath;
    QString m_error;
};

} // namespace kel
