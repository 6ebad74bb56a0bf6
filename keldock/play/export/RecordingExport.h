#pragma once

#include "play/export/SaveFileDialog.h"

#include <KelMovie/KelExportRequest.h>

#include <QObject>

class Player;
class QWidget;

/// Exports a recording as it is being played: its trim range, at its speed. Asks how and where to, shows the progress
/// and tells what came of it.
class RecordingExport : public QObject
{
    Q_OBJECT

public:
    /// `window` is what the dialogs belong to; neither it nor `player` is owned.
    RecordingExport(Player *player, QWidget *window);

    /// The recording was just made: at the end, the user is asked whether to leave it.
    void setFromRecording(bool on) { m_isFromRecording = on; }

public slots:
    /// Returns when the file is there or the user has given up.
    void run();

signals:
    void exported(const QString &path);
    /// The user wants to be done with the recording.
    void exitRequested();

private:
    static SaveFileDialog::Kind fileKind();
    KelExportRequest request(const QString &path) const;

    Player *const m_player;
    QWidget *const m_window;
    bool m_isFromRecording = false;
};
