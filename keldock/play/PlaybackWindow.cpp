#include "play/PlaybackWindow.h"

#include <KelMovie/KelMultiTrackRecorder.h>

#include <QFileInfo>

class PlaybackWindow::Private
{
public:
    QString dir;
    KelMultiTrackRecorder recorder;
};

PlaybackWindow::PlaybackWindow(const QString &recordingDir, QWidget *parent)
    : QMainWindow(parent)
    , d(std::make_unique<Private>())
{
    d->dir = recordingDir;
    d->recorder.loadRecording(recordingDir);
    setWindowTitle(QFileInfo(recordingDir).fileName());
}

PlaybackWindow::~PlaybackWindow() = default;

QString PlaybackWindow::recordingDir() const
{
    return d->dir;
}
