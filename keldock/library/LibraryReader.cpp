#include "library/LibraryReader.h"

#include "common/DirectorySize.h"
#include "library/ThumbnailCache.h"

#include <KelMovie/KelRecordingMetadata.h>

#include <QFile>

void LibraryReader::scan(const QString &root)
{
    emit scanned(RecordingsFolder(root).recordings());
}

void LibraryReader::read(const QString &dir)
{
    RecordingDetails details;
    KelRecordingMetadata metadata;
    KelRecordingMetadata::load(dir, &metadata);
    details.durationMs = metadata.durationMs;
    details.frames = metadata.actualRecordedFrames;
    details.bytes = directorySize(dir);
    details.state = KelRecordingState::stateOf(dir);
    details.thumbnail = ThumbnailCache::find(dir);
    emit detailsRead(dir, details);
}

void LibraryReader::makeThumbnail(const QString &dir, const QString &imageFile)
{
    const QImage thumbnail = ThumbnailCache::store(dir, imageFile);
    QFile::remove(imageFile);
    emit thumbnailMade(dir, thumbnail);
}
