#pragma once

#include "library/RecordingDetails.h"
#include "library/ThumbnailProcess.h"

#include <QAbstractListModel>
#include <QStringList>
#include <QThread>
#include <QVector>

class LibraryReader;

/// The recordings in a folder, newest first. Only names are read for all of them. Details are read on a worker thread,
/// and thumbnails made by another process, for rows that a view requests. GUI thread.
class RecordingsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        DirRole = Qt::UserRole,
        SavedRole,   ///< QDateTime
        DetailsRole, ///< RecordingDetails; invalid until they are read; the first request starts that
        StatusRole,  ///< status text for the user; empty for an ordinary recording
        ActiveRole,  ///< bool: this program is making the recording
    };

    /// `program` is the command line program, which composes the frames for the thumbnails.
    RecordingsModel(const QString &root, const QString &program, QObject *parent = nullptr);
    ~RecordingsModel() override;

    /// Reads the folder again and emits refreshed(). Happens on the worker thread.
    void refresh();
    /// The recording that this program is making; empty if there is none.
    void setActiveRecording(const QString &dir);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Renames the recording, with Qt::EditRole.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

signals:
    /// The folder has been read.
    void refreshed();
    /// `name` is the refused name, `error` is for the user.
    void renameFailed(const QString &dir, const QString &name, const QString &error);

private:
    struct Row {
        RecordingsFolder::Entry entry;
        RecordingDetails details;
        bool isRead = false;
        bool isRequested = false;
        bool hasTriedThumbnail = false;
    };

    void updateRows(const QVector<RecordingsFolder::Entry> &entries);
    void updateDetails(const QString &dir, const RecordingDetails &details);
    void updateThumbnail(const QString &dir, const QImage &thumbnail);
    void requestDetails(int row) const;
    void readNextDetails();
    void makeNextThumbnail();
    int rowOf(const QString &dir) const;
    void emitChanged(int row);
    QString status(const Row &row) const;
    QString description(const Row &row) const;

    const QString m_root;
    QString m_activeRecording;
    mutable QVector<Row> m_rows;
    mutable QStringList m_detailRequests; ///< directories, oldest request first
    QStringList m_thumbnailRequests;      ///< likewise
    bool m_isReading = false;
    ThumbnailProcess m_thumbnails;
    LibraryReader *m_reader = nullptr;
    QThread m_thread;
};
