#include "widgets/FileManager.h"

#include <QDesktopServices>
#include <QUrl>

void openInFileManager(const QString &folder)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
}
