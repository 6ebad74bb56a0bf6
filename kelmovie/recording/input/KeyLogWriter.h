#pragma once

#include "files/PrivateFile.h"
#include "recording/input/KeyLogFormat.h"

#include <QSize>
#include <QString>

#include <cstddef>

namespace kel
{

/// Writes "keyboard.keymeta", which only its owner can read. One thread at a time.
///
/// A reader accepts the file only if its size matches the number of records in its header, and one write cannot change
/// both. Until it is finished, the file therefore ends in spare records without effect, which later records overwrite.
/// When they are used up, the file is replaced by one with room for twice as many records.
class KeyLogWriter
{
public:
    /// `area`: the size of the recorded rectangle.
    KeyLogWriter(const QString &path, const QSize &area);

    /// The first of `count` records that update() has to be given. Records at the end may have been taken back; the
    /// file keeps them until others replace them.
    std::size_t firstNeeded(std::size_t count) const;

    /// Writes the records from number `first` on, replacing any that the file already has from there on. False when
    /// that fails; the file is then unchanged.
    bool update(std::size_t first, const StoredKeyRecords &records);

    /// Makes the file consist of exactly these records.
    bool finish(const StoredKeyRecords &records);

    /// The next update() replaces the file by a new one.
    void restart();

    QString path() const { return m_file.fileName(); }
    QString errorString() const { return m_error; }

private:
    bool open();
    bool replace(const StoredKeyRecords &records, std::size_t room);

    PrivateFile m_file; // open from the first update() on
    const QSize m_area;
    std::size_t m_count = 0; // records in use
    std::size_t m_room = 0;  // records in the file, spare ones included
    QString m_error;
};

} // namespace kel
