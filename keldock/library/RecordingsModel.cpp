#include "library/RecordingsModel.h"

#include "common/Units.h"
#include "library/LibraryReader.h"
#include "library/ThumbnailCache.h"

#include <QFileInfo>
#include <QHash>
#include <QLocale>

#include <algorithm>

namespace
{

// More rows than are visible at a time: older requests are for rows that were scrolled past, and are dropped.
constexpr int kMaxRequests = 64;

using State = KelRecordingState::State;

} // namespace

RecordingsModel::RecordingsModel(const QString &root, const QString &program, QObject *parent)
    : QAbstractListModel(parent)
    , m_root(root)
    , m_thumbnails(program)
    , m_reader(new LibraryReader)
{
    qRegisterMetaType<RecordingDetails>();
    qRegisterMetaType<QVector<RecordingsFolder::Entry>>();
    m_reader->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_reader, &QObject::deleteLater);
    connect(m_reader, &LibraryReader::scanned, this, &RecordingsModel::updateRows);
    connect(m_reader, &LibraryReader::detailsRead, this, &RecordingsModel::updateDetails);
    connect(m_reader, &LibraryReader::thumbnailMade, this, &RecordingsModel::updateThumbnail);
    connect(&m_thumbnails, &ThumbnailProcess::finished, m_reader, &LibraryReader::makeThumbnail);
    m_thread.start(QThread::LowPriority);
    QMetaObject::invokeMethod(m_reader, &ThumbnailCache::prune);
    refresh();
}

RecordingsModel::~RecordingsModel()
{
    m_thread.quit();
    m_thread.wait();
}

void RecordingsModel::refresh()
{
    QMetaObject::invokeMethod(m_reader, [reader = m_reader, root = m_root] { reader->scan(root); });
}

void RecordingsModel::setActiveRecording(const QString &dir)
{
    const int before = rowOf(m_activeRecording);
    m_activeRecording = dir;
    for (const int row : {before, rowOf(dir)}) {
        if (row >= 0) {
            m_rows[row].isRead = false; // its size and duration have changed
            emitChanged(row);
        }
    }
}

int RecordingsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

QVariant RecordingsModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return QFileInfo(row.entry.dir).fileName();
    case Qt::ToolTipRole:
        return row.entry.dir;
    case Qt::AccessibleTextRole:
        return description(row);
    case DirRole:
        return row.entry.dir;
    case SavedRole:
        return row.entry.saved;
    case DetailsRole:
        if (!row.isRead)
            requestDetails(index.row());
        return row.isRead ? QVariant::fromValue(row.details) : QVariant();
    case StatusRole:
        return status(row);
    case ActiveRole:
        return row.entry.dir == m_activeRecording;
    default:
        return QVariant();
    }
}

Qt::ItemFlags RecordingsModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QAbstractListModel::flags(index);
    return index.isValid() ? flags | Qt::ItemIsEditable : flags;
}

bool RecordingsModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const QString name = value.toString();
    if (role != Qt::EditRole || name == data(index, Qt::EditRole).toString())
        return false;
    QString newDir;
    QString error;
    Row &row = m_rows[index.row()];
    if (!RecordingsFolder::rename(row.entry.dir, name, &newDir, &error)) {
        emit renameFailed(row.entry.dir, name, error);
        return false;
    }
    row.entry.dir = newDir;
    emitChanged(index.row());
    return true;
}

/// Keeps the rows of unchanged recordings, so that selection and scroll position are preserved.
void RecordingsModel::updateRows(const QVector<RecordingsFolder::Entry> &entries)
{
    QHash<QString, QDateTime> savedTimes;
    for (const auto &entry : entries)
        savedTimes.insert(entry.dir, entry.saved);
    for (int i = m_rows.size() - 1; i >= 0; --i) {
        const RecordingsFolder::Entry &entry = m_rows.at(i).entry;
        if (savedTimes.value(entry.dir) != entry.saved) {
            beginRemoveRows(QModelIndex(), i, i);
            m_rows.remove(i);
            endRemoveRows();
        }
    }
    if (m_rows.isEmpty() && !entries.isEmpty()) {
        beginInsertRows(QModelIndex(), 0, entries.size() - 1);
        for (const auto &entry : entries)
            m_rows.append({entry, {}});
        endInsertRows();
    }
    for (int i = 0; i < entries.size(); ++i) {
        if (i < m_rows.size() && m_rows.at(i).entry.dir == entries.at(i).dir)
            continue;
        beginInsertRows(QModelIndex(), i, i);
        m_rows.insert(i, {entries.at(i), {}});
        endInsertRows();
    }
    emit refreshed();
}

void RecordingsModel::updateDetails(const QString &dir, const RecordingDetails &details)
{
    m_isReading = false;
    const int row = rowOf(dir);
    if (row >= 0) {
        m_rows[row].details = details;
        m_rows[row].isRead = true;
        m_rows[row].isRequested = false;
        emitChanged(row);
        const bool canHaveThumbnail = details.state != State::InProgress && dir != m_activeRecording;
        if (details.thumbnail.isNull() && canHaveThumbnail && !m_rows.at(row).hasTriedThumbnail) {
            m_rows[row].hasTriedThumbnail = true;
            m_thumbnailRequests.append(dir);
            makeNextThumbnail();
        }
    }
    readNextDetails();
}

void RecordingsModel::updateThumbnail(const QString &dir, const QImage &thumbnail)
{
    const int row = rowOf(dir);
    if (row >= 0 && !thumbnail.isNull()) {
        m_rows[row].details.thumbnail = thumbnail;
        emitChanged(row);
    }
    makeNextThumbnail();
}

void RecordingsModel::requestDetails(int row) const
{
    if (m_rows.at(row).isRequested)
        return;
    m_rows[row].isRequested = true;
    m_detailRequests.append(m_rows.at(row).entry.dir);
    if (m_detailRequests.size() > kMaxRequests) {
        const int dropped = rowOf(m_detailRequests.takeFirst());
        if (dropped >= 0)
            m_rows[dropped].isRequested = false;
    }
    QMetaObject::invokeMethod(const_cast<RecordingsModel *>(this), &RecordingsModel::readNextDetails,
                              Qt::QueuedConnection);
}

void RecordingsModel::readNextDetails()
{
    if (m_isReading || m_detailRequests.isEmpty())
        return;
    m_isReading = true;
    QMetaObject::invokeMethod(m_reader, [reader = m_reader, dir = m_detailRequests.takeFirst()] { reader->read(dir); });
}

void RecordingsModel::makeNextThumbnail()
{
    if (m_thumbnails.isBusy())
        return;
    while (!m_thumbnailRequests.isEmpty()) {
        const int row = rowOf(m_thumbnailRequests.takeLast()); // the latest request is for what is visible now
        if (row >= 0) {
            // Not at the beginning, where often nothing has happened yet.
            m_thumbnails.start(m_rows.at(row).entry.dir, m_rows.at(row).details.frames / 3);
            return;
        }
    }
}

int RecordingsModel::rowOf(const QString &dir) const
{
    const auto found =
        std::find_if(m_rows.cbegin(), m_rows.cend(), [&](const Row &row) { return row.entry.dir == dir; });
    return found == m_rows.cend() ? -1 : int(found - m_rows.cbegin());
}

void RecordingsModel::emitChanged(int row)
{
    emit dataChanged(index(row), index(row));
}

QString RecordingsModel::status(const Row &row) const
{
    if (row.entry.dir == m_activeRecording)
        return tr("Recording in progress");
    if (!row.isRead || row.details.state == State::Complete)
        return QString();
    return row.details.state == State::Interrupted ? tr("Recovered after a crash") : tr("Recording in progress");
}

QString RecordingsModel::description(const Row &row) const
{
    QStringList parts{QFileInfo(row.entry.dir).fileName(), QLocale().toString(row.entry.saved, QLocale::ShortFormat)};
    if (row.isRead)
        parts << Units::clock(row.details.durationMs) << Units::bytes(row.details.bytes);
    const QString statusText = status(row);
    if (!statusText.isEmpty())
        parts << statusText;
    return parts.join(QLatin1String(", "));
}
