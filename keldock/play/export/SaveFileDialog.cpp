#include "play/export/SaveFileDialog.h"

#include "notification/KelMsgBox.h"
#include "widgets/WindowStore.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>

namespace
{

const QString kFolderKey = QStringLiteral("SaveFile/folder");

QString lastFolder()
{
    const QString folder = windowStore().value(kFolderKey).toString();
    return QFileInfo(folder).isDir() ? folder : QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
}

} // namespace

bool SaveFileDialog::confirmReplace(QWidget *parent, const QString &path)
{
    return !QFileInfo::exists(path) ||
           KelMsgBox::question(parent, tr("Replace File?"),
                               tr("%1 already exists. Do you want to replace it?").arg(QFileInfo(path).fileName())) ==
               QMessageBox::Yes;
}

QString SaveFileDialog::ask(QWidget *parent, const Kind &kind, const QString &name)
{
    const QString patterns = QLatin1String("*.") + kind.suffixes.join(QLatin1String(" *."));
    QFileDialog dialog(parent, kind.title, lastFolder(), QStringLiteral("%1 (%2)").arg(kind.description, patterns));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite); // confirmReplace() asks when the suffix is known
    dialog.selectFile(name + QLatin1Char('.') + kind.suffixes.first());
    while (dialog.exec() == QDialog::Accepted) {
        QString path = dialog.selectedFiles().value(0);
        if (!kind.suffixes.contains(QFileInfo(path).suffix(), Qt::CaseInsensitive))
            path += QLatin1Char('.') + kind.suffixes.first();
        if (confirmReplace(parent, path)) {
            windowStore().setValue(kFolderKey, QFileInfo(path).path());
            return path;
        }
    }
    return QString();
}
