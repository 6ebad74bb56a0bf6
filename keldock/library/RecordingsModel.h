#pragma once

#include "library/PictureProcess.h"
#include "library/RecordingDetails.h"

#include <QAbstractListModel>
#include <QHash>
#include <QThread>
#include <QVector>

class LibraryReader;

/// The recordings in a folder, the newest first. Names are known at once; the rest is read on another thread, and
/// pictures are made by another process, for those rows only that somebody looks at.
class RecordingsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        DirRole = Qt::UserRole,
        SavedRole,   ///< QDateTime
        DetailsRole, ///< RecordingDetails; invalid until they are read, which asking for them starts
        StatusRole,  ///< what is particular about the recording, for the user; mostly empty
        ActiveRole,  ///< bool: the recording is under way here
    };

    /// `program` is the command line program, which makes the pictures.
    RecordingsModel(const QString &root, const QString &program, QObject *parent = nullptr);
    ~RecordingsModel() override;

    /// Reads the folder again.
    void refresh();
    /// Whether the folder has been read once.
    bool isRead() const { return m_isRead; }
    void setActiveRecording(const QString &dir);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Qt::EditRole renames.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

signals:
    /// The folder has been read.
    void refreshed();
    /// A rename failed; `error` is for the user.
    void renameFailed(const QString &error);

private:
    struct Row {
        RecordingsFolder::Entry entry;
        RecordingDetails details;
        bool isRead = false;
        bool isWanted = false;
        bool hasTriedPicture = false;
    };

    void takeEntries(const QVector<RecordingsFolder::Entry> &entries);
    void takeDetails(const QString &dir, const RecordingDetails &details);
    void takeThumbnail(const QString &dir, const QImage &thumbnail);
    void want(int row) const;
    void readNext();
    void pictureNext();
    int rowOf(const QString &dir) const;
    void tellChanged(int row);
    QString status(const Row &row) const;
    QString description(const Row &row) const;

    const QString m_root;
    QString m_activeRecording;
    mutable QVector<Row> m_rows;
    mutable QStringList m_wanted; ///< to be read, the longest asked for first
    QStringList m_pictureless;    ///< to be pictured, likewise
    bool m_isReading = false;
    bool m_isRead = false;
    PictureProcess m_pictures;
    LibraryReader *m_reader = nullptr;
    QThread m_thread;
};
