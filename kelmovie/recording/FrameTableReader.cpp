#include "recording/FrameTableReader.h"

#include "recording/FrameTableFormat.h"
#include "recording/KelRecordingFiles.h"
#include "recording/RecordingFile.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

namespace kel
{

using namespace FrameTableFormat;

namespace
{

/// The integer at `offset`; 0 beyond the end, which is no valid version or count.
qint32 integerAt(const QByteArray &data, qint64 offset)
{
    return offset + kEntrySize <= data.size() ? qFromBigEndian<qint32>(data.constData() + offset) : 0;
}

} // namespace

FrameTable readFrameTable(const QString &trackDir, QLatin1String name)
{
    using Problem = FrameTable::Problem;
    FrameTable table;
    const auto fail = [&table](Problem problem) {
        table.problem = problem;
        return table;
    };
    if (!QFileInfo::exists(KelRecordingFiles::path(trackDir, name)))
        return fail(Problem::Missing);
    QFile file;
    if (!openTrackFile(&file, trackDir, name).isEmpty())
        return fail(Problem::Unreadable);
    const QByteArray header = file.read(kEntriesOffset);
    table.version = integerAt(header, 0);
    if (table.version != kVersion)
        return fail(Problem::InvalidVersion);
    table.count = integerAt(header, kCountOffset);
    if (table.count < 1 || table.count > kMaxCount)
        return fail(Problem::InvalidCount);
    const QByteArray entries = file.read(table.count * kEntrySize);
    table.entries.resize(std::size_t(entries.size() / kEntrySize));
    qFromBigEndian<qint32>(entries.constData(), qsizetype(table.entries.size()), table.entries.data());
    return table;
}

} // namespace kel
