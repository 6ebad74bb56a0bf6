#include "play/export/RecordingExport.h"

#include "play/export/ExportOptionsDialog.h"
#include "play/player/Player.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelPlaybackExportDialog.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QFileInfo>

RecordingExport::RecordingExport(Player *player, QWidget *window)
    : QObject(window)
    , m_player(player)
    , m_window(window)
{
}

SaveFileDialog::Kind RecordingExport::fileKind()
{
    const QString suffix = KelMovieFormatSuffix();
    SaveFileDialog::Kind kind{tr("Export Recording"), tr("GIF animation"), {suffix}};
    if (suffix == QLatin1String("mp4"))
        kind.description = tr("MP4 video");
    else if (suffix == QLatin1String("webp"))
        kind.description = tr("WebP animation");
    else if (suffix == QLatin1String("apng")) {
        kind.description = tr("Animated PNG");
        kind.suffixes.append(QStringLiteral("png"));
    }
    return kind;
}

KelExportRequest RecordingExport::request(const QString &path) const
{
    KelExportRequest request;
    request.format = gKelMovieConfig.playbackEncodeFormat;
    request.quality = KelMovieExportQuality();
    request.speed = m_player->speed();
    request.outputPath = path;
    request.playbackManager = m_player->manager();
    if (m_player->isTrimmed()) {
        request.trimStartMs = m_player->rangeStartMs();
        request.trimEndMs = m_player->rangeEndMs();
    }
    request.loops = gKelMovieConfig.encodeGifPlayLoop;
    request.fromRecording = m_isFromRecording;
    request.autoExitAfterEncode = gKelMovieConfig.encodeExitRecordAfterEncode;
    request.onExitRecord = KelMovieSaveExitRecordAfterEncode;
    return request;
}

void RecordingExport::run()
{
    m_player->setPlaying(false);
    m_player->settle();
    ExportOptionsDialog options(*m_player, m_window);
    if (options.exec() != QDialog::Accepted)
        return;
    const QString name = QFileInfo(m_player->manager()->recordDir()).fileName();
    const QString path = SaveFileDialog::ask(m_window, fileKind(), name);
    if (path.isEmpty())
        return;
    KelExportRequest request = this->request(path);
    request.fps = options.fps();
    request.size = options.frameSize();
    KelPlaybackExportDialog dialog(request, m_window);
    if (dialog.exec() != QDialog::Accepted)
        return; // the dialog has shown the reason
    emit exported(path);
    if (dialog.exitRecord())
        emit exitRequested();
}
