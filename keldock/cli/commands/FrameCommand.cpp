#include "cli/commands/FrameCommand.h"

#include "cli/commands/Arguments.h"
#include "cli/commands/LoadedRecording.h"
#include "common/ComposedFrame.h"
#include "common/PngFile.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QFileInfo>
#include <QImage>

namespace
{

/// The frame as it would be seen in playback.
QImage playedFrame(const LoadedRecording &recording, int frame)
{
    KelPlaybackTrackManager *const manager = recording.manager();
    manager->setFrameAsPlayed(frame);
    return composedFrame(manager, QImage(recording.pixels(), QImage::Format_ARGB32_Premultiplied));
}

} // namespace

QString FrameCommand::help() const
{
    return QStringLiteral("Saves a frame of a recording as it is played, with the pointer and all other overlays.\n"
                          "\n"
                          "Usage: keldock frame DIR N FILE.png\n"
                          "\n"
                          "  DIR        the directory of the recording\n"
                          "  N          the logic frame, starting at 0; 'keldock info DIR' shows how many there are\n"
                          "  FILE.png   the file to write; an existing file is replaced\n"
                          "\n"
                          "Options:\n"
                          "  --verbose  show the engine's log on standard error\n"
                          "  --help     show this help\n"
                          "\n"
                          "Example:\n"
                          "  keldock frame hello 0 first.png\n");
}

QString FrameCommand::parse(const QStringList &arguments)
{
    Arguments options({}, arguments);
    const QStringList values =
        options.positional({QStringLiteral("DIR"), QStringLiteral("N"), QStringLiteral("FILE.png")});
    m_directory = values.at(0);
    m_file = values.at(2);
    bool isNumber = false;
    m_frame = values.at(1).toInt(&isNumber);
    if (!isNumber || m_frame < 0)
        options.reject(QStringLiteral("N must be a frame number, 0 or more, not '%1'").arg(values.at(1)));
    if (!m_file.endsWith(QLatin1String(".png"), Qt::CaseInsensitive))
        options.reject(QStringLiteral("'%1' does not end in .png").arg(m_file));
    return options.error();
}

QString FrameCommand::run()
{
    const LoadedRecording recording(m_directory);
    if (!recording.error().isEmpty())
        return recording.error();
    if (m_frame >= recording.logicFrames()) {
        return QStringLiteral("there is no frame %1: the recording has frames 0 to %2")
            .arg(m_frame)
            .arg(recording.logicFrames() - 1);
    }
    const QFileInfo existing(m_file);
    if (existing.exists() && !existing.isFile())
        return QStringLiteral("'%1' is not a regular file").arg(m_file);
    const QImage image = playedFrame(recording, m_frame);
    if (image.isNull())
        return QStringLiteral("there is not enough memory for the frame");
    const QString problem = savePng(image, m_file);
    return problem.isEmpty() ? QString() : QStringLiteral("'%1' cannot be written: %2").arg(m_file, problem);
}
