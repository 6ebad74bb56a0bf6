#include "library/RecordingsWindow.h"

#include "library/RecordingsFolder.h"

#include <QFileInfo>
#include <QListWidget>

class RecordingsWindow::Private
{
public:
    RecordingsFolder folder;
    QString activeRecording;
    QListWidget *list = nullptr;
};

RecordingsWindow::RecordingsWindow(const QString &root, QWidget *parent)
    : QMainWindow(parent)
    , d(std::make_unique<Private>())
{
    d->folder = RecordingsFolder(root);
    setWindowTitle(tr("Recordings"));
    d->list = new QListWidget(this);
    setCentralWidget(d->list);
    connect(d->list, &QListWidget::itemActivated, this,
            [this](const QListWidgetItem *item) { emit openRequested(item->data(Qt::UserRole).toString()); });
    refresh();
}

RecordingsWindow::~RecordingsWindow() = default;

void RecordingsWindow::refresh()
{
    d->list->clear();
    const auto recordings = d->folder.recordings();
    for (const RecordingsFolder::Entry &entry : recordings) {
        if (entry.dir == d->activeRecording)
            continue;
        auto *const item = new QListWidgetItem(QFileInfo(entry.dir).fileName(), d->list);
        item->setData(Qt::UserRole, entry.dir);
    }
}

void RecordingsWindow::setActiveRecording(const QString &dir)
{
    d->activeRecording = dir;
    refresh();
}
