#include "widgets/FileManager.h"

#include <QDesktopServices>
#include <QUrl>

void showInFileManager(const QString &folder)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
}
