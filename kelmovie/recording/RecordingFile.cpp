#include "recording/RecordingFile.h"

#include "files/OpenInside.h"

#include <QDir>
#include <QFileInfo>

namespace kel
{

QString openTrackFile(QFile *file, const QString &trackDir, const QString &name)
{
    const QFileInfo track(QDir::cleanPath(trackDir));
    return openInside(file, track.path(), track.fileName() + QLatin1Char('/') + name);
}

} // namespace kel
