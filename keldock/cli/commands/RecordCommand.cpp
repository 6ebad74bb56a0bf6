#include "cli/commands/RecordCommand.h"

#include "cli/commands/Arguments.h"
#include "cli/commands/LoadedRecording.h"
#include "cli/commands/OptionalTrack.h"
#include "cli/commands/RecordingSession.h"
#include "cli/terminal/Console.h"
#include "common/FrameRate.h"
#include "common/Units.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMovieSelfTest.h>
#include <KelMovie/KelMovieUI.h>
#include <KelMovie/KelRecordingFiles.h>

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QScreen>

namespace
{

constexpr double kMinSeconds = 0.1;
constexpr double kMaxSeconds = 7 * 24 * 3600;
constexpr int kMaxCoordinate = 65535; // the limit of X11

QString screenList()
{
    QStringList list;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (int i = 0; i < screens.size(); ++i)
        list.append(QStringLiteral("%1 (%2)").arg(i).arg(Units::area(screens.at(i)->geometry())));
    return list.join(QLatin1String(", "));
}

/// Null if `text` is not a rectangle of at least one pixel.
QRect parseRect(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^(-?\\d{1,5}),(-?\\d{1,5}),(\\d{1,5})x(\\d{1,5})$"));
    const QRegularExpressionMatch match = form.match(text);
    const QRect area(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt(),
                     match.captured(4).toInt());
    const QRect desktop(-kMaxCoordinate, -kMaxCoordinate, 2 * kMaxCoordinate, 2 * kMaxCoordinate);
    return desktop.contains(area) ? area : QRect();
}

} // namespace

QString RecordCommand::help() const
{
    return QStringLiteral(
        "Records a screen or a part of it into a directory.\n"
        "\n"
        "Usage: keldock record (--area X,Y,WxH | --screen N) --out DIR [OPTIONS]\n"
        "\n"
        "Options:\n"
        "  --area X,Y,WxH      record this rectangle, in pixels of the desktop\n"
        "  --screen N          record the whole screen N; 0 is the first\n"
        "  --out DIR           the directory to record into; created if necessary, must not contain a recording\n"
        "  --fps N             frames per second, 1 to 240 (default: 24)\n"
        "  --duration SECONDS  stop after this time, e.g. 2.5 (default: record until Ctrl-C)\n"
        "  --[no-]mouse        record the mouse (default: yes)\n"
        "  --[no-]keyboard     record keystrokes in every program, including passwords (default: no)\n"
        "  --[no-]system-audio record what the computer plays (default: no)\n"
        "  --[no-]microphone   record the microphone (default: no)\n"
        "  --input-devices     read clicks and keys from the input devices where the session does not show them\n"
        "                      (Wayland); your user must be in the group 'input'\n"
        "  --verbose           show the engine's log on standard error\n"
        "  --help              show this help\n"
        "\n"
        "Ctrl-C, a closed terminal and a shutdown stop and save the recording. Even if the process is killed, only\n"
        "the last moment is lost.\n"
        "\n"
        "Examples:\n"
        "  keldock record --screen 0 --out hello\n"
        "  keldock record --area 100,80,1280x720 --fps 30 --duration 10 --out hello\n");
}

QString RecordCommand::parse(const QStringList &arguments)
{
    QList<QCommandLineOption> known;
    for (const char *option : {"area", "screen", "fps", "duration", "out"})
        known.append(QCommandLineOption(QLatin1String(option), QString(), QStringLiteral("value")));
    for (const OptionalTrack &track : kOptionalTracks) {
        known.append(QCommandLineOption(QLatin1String(track.option)));
        known.append(QCommandLineOption(QLatin1String("no-") + QLatin1String(track.option)));
    }
    known.append(QCommandLineOption(QStringLiteral("input-devices")));
    Arguments options(known, arguments);
    options.positional({});
    parseArea(options);
    parseTracks(options);
    m_config.fps = options.integer(QStringLiteral("fps"), 1, kMaxFps, gKelMovieConfig.recordFps);
    m_durationMs = qRound64(1000.0 * options.number(QStringLiteral("duration"), kMinSeconds, kMaxSeconds, 0));
    m_config.outputDir = options.text(QStringLiteral("out"));
    if (m_config.outputDir.isEmpty())
        options.reject(QStringLiteral("--out DIR is missing"));
    return options.error();
}

void RecordCommand::parseArea(Arguments &options)
{
    const QString area = options.text(QStringLiteral("area"));
    const bool hasArea = options.isSet(QStringLiteral("area"));
    const bool hasScreen = options.isSet(QStringLiteral("screen"));
    if (hasArea == hasScreen) {
        options.reject(hasArea ? QStringLiteral("--area and --screen cannot be combined")
                               : QStringLiteral("specify what to record: --area X,Y,WxH or --screen N"));
    }
    if (hasArea) {
        m_area = parseRect(area);
        if (m_area.isEmpty()) {
            options.reject(QStringLiteral("--area must be X,Y,WxH with a width and height of at least 1, e.g. "
                                          "100,80,1280x720, not '%1'")
                               .arg(area));
        }
    }
    m_screen = options.integer(QStringLiteral("screen"), 0, 99, -1);
}

void RecordCommand::parseTracks(Arguments &options)
{
    for (const OptionalTrack &track : kOptionalTracks) {
        const QString name = QLatin1String(track.option);
        const bool isIncluded = options.isSet(name);
        const bool isExcluded = options.isSet(QLatin1String("no-") + name);
        if (isIncluded && isExcluded)
            options.reject(QStringLiteral("--%1 and --no-%1 cannot be combined").arg(name));
        m_config.*track.enabled = isIncluded || (track.isDefault && !isExcluded);
    }
    m_config.keepsKeysAcrossPauses = true;
    KelMovieUI::setReadsInputDevices(options.isSet(QStringLiteral("input-devices")));
}

QString RecordCommand::run()
{
    QRect area;
    QString error = findArea(&area);
    if (error.isEmpty())
        error = prepareDirectory();
    if (!error.isEmpty())
        return error;

    RecordingSession session(area, m_config, m_durationMs);
    error = session.run();
    if (session.hasRecorded())
        Console::print(summaryText());
    return error;
}

QString RecordCommand::findArea(QRect *area) const
{
    const QString problem = KelMovieSelfTest::screenProblem();
    if (!problem.isEmpty())
        return problem;
    const QList<QScreen *> screens = QGuiApplication::screens();
    if (m_screen >= screens.size())
        return QStringLiteral("there is no screen %1; available: %2").arg(m_screen).arg(screenList());
    *area = m_screen >= 0 ? screens.at(m_screen)->geometry() : m_area;
    for (const QScreen *screen : screens) {
        if (screen->geometry().intersects(*area))
            return QString();
    }
    return QStringLiteral("the area %1 is outside of all screens: %2").arg(Units::area(*area), screenList());
}

QString RecordCommand::prepareDirectory() const
{
    const QString directory = m_config.outputDir;
    const QFileInfo info(directory);
    if (info.exists() && !info.isDir())
        return QStringLiteral("'%1' is not a directory").arg(directory);
    if (QFileInfo::exists(KelRecordingMetadata::filePath(directory)) ||
        QFileInfo::exists(KelRecordingFiles::path(directory, KelRecordingFiles::kScreenDir)))
        return QStringLiteral("'%1' already contains a recording; choose another directory").arg(directory);
    // The recorder creates the directory itself, for its owner only.
    if (!QDir().mkpath(QFileInfo(QDir::cleanPath(directory)).path()))
        return QStringLiteral("the directory '%1' cannot be created").arg(directory);
    if (info.exists() && !info.isWritable())
        return QStringLiteral("the directory '%1' is not writable").arg(directory);
    return QString();
}

QString RecordCommand::summaryText() const
{
    const LoadedRecording recording(m_config.outputDir);
    return QStringLiteral("Recorded %1\n"
                          "  logic frames  %2\n"
                          "  video frames  %3\n"
                          "  size          %4\n"
                          "  directory     %5\n")
        .arg(Units::seconds(recording.durationMs()))
        .arg(recording.logicFrames())
        .arg(recording.videoFrames())
        .arg(Units::bytes(recording.bytes()), QDir(m_config.outputDir).absolutePath());
}
