#pragma once

#include "recording/input/WipingAllocator.h"

#include <QFile>
#include <QSize>
#include <QString>
#include <QtEndian>

#include <cstddef>
#include <vector>

namespace kel
{

/// One key of "keyboard.keymeta", as in the file. Key 0: the keys were switched off (pressed 0) or on (pressed 1).
struct StoredKey {
    qint32_le key;      ///< a Qt::Key value
    quint32_le pressed; ///< 1 pressed, 0 released
    qint32_le frame;    ///< logic frame
};
static_assert(sizeof(StoredKey) == 12, "written as it is");

/// Keys that were typed are not left behind in memory.
using StoredKeys = std::vector<StoredKey, WipingAllocator<StoredKey>>;

/// Writes "keyboard.keymeta", which nobody but its owner can read. One thread at a time.
///
/// A reader takes the file only when its size and the number of records in its header agree, which two writes cannot
/// change in one step. Until it is finished the file therefore has room at its end: records that mean nothing, which
/// those to come are written over. When the room is used up the file is replaced by one with twice as much.
class KeyLogFile
{
public:
    /// `area`: the size of the recorded rectangle.
    KeyLogFile(const QString &path, const QSize &area);

    /// The first of `count` records that update() has to be given.
    std::size_t firstNeeded(std::size_t count) const;

    /// Writes the records from number `first` on, in place of those that the file may have from there on. False when
    /// that fails; the file then holds what it held.
    bool update(std::size_t first, const StoredKeys &records);

    /// Makes the file consist of these records and nothing else.
    bool finish(const StoredKeys &records);

    /// The next update() begins a new file in place of this one.
    void restart();

    QString path() const { return m_file.fileName(); }
    QString errorString() const { return m_error; }

private:
    bool open();
    bool replace(const StoredKeys &records, std::size_t room);

    QFile m_file; // open from the first update() on
    const QSize m_area;
    std::size_t m_count = 0; // records that mean something
    std::size_t m_room = 0;  // records that the file has
    QString m_error;
};

} // namespace kel
