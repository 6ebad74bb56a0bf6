#include "cli/commands/InfoCommand.h"

#include "cli/commands/Arguments.h"
#include "cli/commands/LoadedRecording.h"
#include "cli/terminal/Console.h"
#include "common/Units.h"

#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KelRecordingState.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

QString line(const char *label, const QString &value)
{
    return QStringLiteral("%1 %2\n").arg(QLatin1String(label), -18).arg(value);
}

QString enabledTracks(const KelRecordingMetadata &metadata)
{
    QStringList names;
    const auto add = [&names](bool isEnabled, const char *name) {
        if (isEnabled)
            names.append(QLatin1String(name));
    };
    add(metadata.screenTrack, "screen");
    add(metadata.mouseTrack, "mouse");
    add(metadata.keyboardTrack, "keyboard");
    add(metadata.systemAudio, "system audio");
    add(metadata.microphoneAudio, "microphone");
    return names.isEmpty() ? QStringLiteral("none") : names.join(QLatin1String(", "));
}

QString state(const LoadedRecording &recording)
{
    if (!recording.hasMetadata())
        return QLatin1String("damaged: ") + recording.warning();
    switch (KelRecordingState::stateOf(recording.directory())) {
    case KelRecordingState::State::InProgress:
        return QStringLiteral("still in progress; everything recorded so far can be played");
    case KelRecordingState::State::Interrupted:
        return QStringLiteral("interrupted; everything recorded until then can be played");
    case KelRecordingState::State::Complete:
        break;
    }
    return QStringLiteral("complete");
}

QString soundProblems(const LoadedRecording &recording)
{
    QString lines;
    for (const QString &problem : recording.manager()->soundProblems())
        lines += line("Sound", problem);
    return lines;
}

QString sizeText(const QSize &size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

} // namespace

QString InfoCommand::help() const
{
    return QStringLiteral("Describes a recording.\n"
                          "\n"
                          "Usage: keldock info DIR [--json]\n"
                          "\n"
                          "  DIR        the directory of the recording\n"
                          "\n"
                          "Options:\n"
                          "  --json     print a JSON object, for scripts\n"
                          "  --verbose  show the engine's log on standard error\n"
                          "  --help     show this help\n"
                          "\n"
                          "Logic frames are the ticks of the recording's clock, which all tracks share. Video frames\n"
                          "are the frames of the video: one for each tick at which the screen had changed.\n"
                          "\n"
                          "Examples:\n"
                          "  keldock info hello\n"
                          "  keldock info hello --json | python3 -c 'import json, sys; "
                          "print(json.load(sys.stdin)[\"duration\"])'\n");
}

QString InfoCommand::parse(const QStringList &arguments)
{
    Arguments options({QCommandLineOption(QStringLiteral("json"))}, arguments);
    m_directory = options.positional({QStringLiteral("DIR")}).at(0);
    m_json = options.isSet(QStringLiteral("json"));
    return options.error();
}

QString InfoCommand::run()
{
    const LoadedRecording recording(m_directory);
    if (!recording.manager())
        return recording.error();
    Console::print(m_json ? asJson(recording) : asText(recording));
    return recording.error();
}

QString InfoCommand::asText(const LoadedRecording &recording)
{
    const KelRecordingMetadata &metadata = recording.metadata();
    const QRect area = metadata.recordArea;
    return line("Recording", QDir(recording.directory()).absolutePath()) + line("State", state(recording)) +
           line("Recorded", metadata.timestamp) +
           line("Duration",
                QStringLiteral("%1 (%2 ms)").arg(Units::seconds(recording.durationMs())).arg(recording.durationMs())) +
           line("Area", QStringLiteral("%1 at %2,%3").arg(sizeText(area.size())).arg(area.x()).arg(area.y())) +
           line("Pixel ratio", QString::number(metadata.pixelRatio)) +
           line("Device pixel ratio", QString::number(metadata.devicePixelRatio)) +
           line("Frame rate", QStringLiteral("%1 fps").arg(metadata.fps)) +
           line("Logic frames", QStringLiteral("%1 (%2 recorded, %3 expected)")
                                    .arg(recording.logicFrames())
                                    .arg(metadata.actualRecordedFrames)
                                    .arg(metadata.totalFrames)) +
           line("Video frames",
                QStringLiteral("%1 of %2 pixels").arg(recording.videoFrames()).arg(sizeText(recording.pixels()))) +
           line("Tracks enabled", enabledTracks(metadata)) +
           line("Tracks present", recording.tracksPresent().join(QLatin1String(", "))) + soundProblems(recording) +
           line("Size", Units::bytes(recording.bytes())) + line("Format version", metadata.version);
}

QString InfoCommand::asJson(const LoadedRecording &recording)
{
    // The members of the metadata file and more. Scripts rely on these names.
    QJsonObject object = QJsonDocument::fromJson(recording.metadata().toJson()).object();
    object.insert(QStringLiteral("duration"), recording.durationMs());
    object.insert(QStringLiteral("complete"), recording.hasMetadata() && recording.metadata().complete);
    object.insert(QStringLiteral("directory"), QDir(recording.directory()).absolutePath());
    object.insert(QStringLiteral("metadataReadable"), recording.hasMetadata());
    object.insert(QStringLiteral("logicFrames"), recording.logicFrames());
    object.insert(QStringLiteral("videoFrames"), recording.videoFrames());
    object.insert(QStringLiteral("videoWidth"), recording.pixels().width());
    object.insert(QStringLiteral("videoHeight"), recording.pixels().height());
    object.insert(QStringLiteral("tracksPresent"), QJsonArray::fromStringList(recording.tracksPresent()));
    object.insert(QStringLiteral("soundProblems"), QJsonArray::fromStringList(recording.manager()->soundProblems()));
    object.insert(QStringLiteral("bytes"), recording.bytes());
    return QString::fromUtf8(QJsonDocument(object).toJson());
}
