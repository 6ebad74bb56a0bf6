#pragma once

#include "play/export/SaveFileDialog.h"

#include <KelMovie/KelExportRequest.h>

#include <QObject>

class Player;
class QWidget;

/// Exports a recording with the trim range and speed of its player. Asks for options and file, and shows progress and
/// result. GUI thread.
class RecordingExport : public QObject
{
    Q_OBJECT

public:
    /// `window` is the parent of the dialogs. Takes no ownership of either.
    RecordingExport(Player *player, QWidget *window);

    /// The recording was just made: after the export the user is asked whether to close it.
    void setFromRecording(bool on) { m_isFromRecording = on; }

public slots:
    /// Returns when the export is complete, has failed or was cancelled.
    void run();

signals:
    void exported(const QString &path);
    /// The user wants to close the recording.
    void exitRequested();

private:
    static SaveFileDialog::Kind fileKind();
    KelExportRequest request(const QString &path) const;

    Player *const m_player;
    QWidget *const m_window;
    bool m_isFromRecording = false;
};
