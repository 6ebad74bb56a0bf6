#include "cli/commands/ExportCommand.h"

#include "cli/commands/Arguments.h"
#include "cli/commands/LoadedRecording.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/ProgressBar.h"
#include "common/FrameRate.h"
#include "common/Units.h"
#include <console/StopSignal.h>

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>

#include <limits>

using namespace kel;

namespace
{

constexpr int kMaxLoops = 65535;
constexpr double kMinSpeed = 0.1;
constexpr double kMaxSpeed = 16.0;

/// The value of KelExportRequest::format; -1 if the name is unknown.
int formatNumber(const QString &name)
{
    const QStringList formats{QStringLiteral("mp4"), QStringLiteral("gif"), QStringLiteral("apng"),
                              QStringLiteral("webp")};
    return formats.indexOf(name == QLatin1String("png") ? QStringLiteral("apng") : name);
}

class TerminalMonitor : public KelExportMonitor
{
public:
    TerminalMonitor(const QString &fileName, const StopSignal &stop)
        : m_stop(stop)
        , m_bar(QLatin1String("Exporting ") + fileName)
    {
    }

    void exportProgress(int percent) override { m_bar.show(percent); }
    void exportStatus(const Status &status) override { m_bar.showNote(note(status)); }
    bool isExportCancelled() override { return m_stop.isRaised(); }
    void finish() { m_bar.finish(); }

private:
    /// Changes often, even when one percent takes minutes.
    static QString note(const Status &status)
    {
        const QString time = status.remainingMs < 0 ? Units::clock(status.elapsedMs)
                                                    : Units::clock(status.remainingMs) + QLatin1String(" left");
        switch (status.stage) {
        case Status::Stage::Frames:
            return QStringLiteral("%1/%2  %3").arg(status.done).arg(status.units).arg(time);
        case Status::Stage::Finishing:
            return QStringLiteral("finishing  %1").arg(time);
        case Status::Stage::Sound:
            return QStringLiteral("adding sound  %1").arg(time);
        case Status::Stage::Saving:
            return QStringLiteral("saving  %1").arg(time);
        }
        return QString();
    }

    const StopSignal &m_stop;
    ProgressBar m_bar;
};

/// Accepts "small", "balanced", "best" or 0 to 100; returns -1 for anything else.
int parseQuality(const QString &text)
{
    const QStringList names{QStringLiteral("small"), QStringLiteral("balanced"), QStringLiteral("best")};
    if (const int setting = names.indexOf(text); setting >= 0) {
        gKelMovieConfig.saveQuality = setting;
        return KelMovieExportQuality();
    }
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number >= 0 && number <= 100 ? number : -1;
}

/// Empty if `text` is not a size of at least one pixel.
QSize parseSize(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"));
    const QRegularExpressionMatch match = form.match(text);
    return QSize(match.captured(1).toInt(), match.captured(2).toInt());
}

} // namespace

QString ExportCommand::help() const
{
    return QStringLiteral(
        "Exports a recording to a file. The recording itself is not changed.\n"
        "\n"
        "Usage: keldock export DIR FILE [OPTIONS]\n"
        "\n"
        "  DIR            the directory of the recording\n"
        "  FILE           the file to write; an existing file is replaced when the export is complete\n"
        "\n"
        "Options:\n"
        "  --format F     mp4, gif, apng or webp (default: according to the suffix of FILE,\n"
        "                 .mp4, .gif, .apng or .png, .webp)\n"
        "  --from MS      start at this time of the recording, in milliseconds (default: its start)\n"
        "  --to MS        end at this time (default: its end)\n"
        "  --speed X      play X times as fast, 0.1 to 16 (default: 1)\n"
        "  --fps N        frames per second, 1 to 240 (default: as recorded)\n"
        "  --quality Q    small, balanced or best, or a number from 0 to 100 (default: balanced = 90)\n"
        "  --loops N      play an animation N times; 0 plays it forever (default: 0)\n"
        "  --size WxH     scale to fit into W x H pixels, keeping the aspect ratio (default: as recorded)\n"
        "  --verbose      show the engine's log on standard error\n"
        "  --help         show this help\n"
        "\n"
        "Ctrl-C cancels the export and leaves no file. If an animation cannot be completed, for example because the\n"
        "disk is full, its first part is kept as NAME.incomplete.SUFFIX.\n"
        "\n"
        "Examples:\n"
        "  keldock export hello hello.mp4\n"
        "  keldock export hello hello.gif --fps 12 --from 2000 --to 5000\n"
        "  keldock export hello quick.webp --speed 4\n");
}

QString ExportCommand::parse(const QStringList &arguments)
{
    QList<QCommandLineOption> known;
    for (const char *option : {"format", "from", "to", "speed", "fps", "quality", "loops", "size"})
        known.append(QCommandLineOption(QLatin1String(option), QString(), QStringLiteral("value")));
    Arguments options(known, arguments);

    const QStringList values = options.positional({QStringLiteral("DIR"), QStringLiteral("FILE")});
    m_directory = values.at(0);
    m_file = values.at(1);
    const int maxMs = std::numeric_limits<int>::max();
    m_fromMs = options.integer(QStringLiteral("from"), 0, maxMs, m_fromMs);
    m_toMs = options.integer(QStringLiteral("to"), 0, maxMs, m_toMs);
    m_speed = options.number(QStringLiteral("speed"), kMinSpeed, kMaxSpeed, m_speed);
    m_fps = options.integer(QStringLiteral("fps"), 1, kMaxFps, m_fps);
    m_loops = options.integer(QStringLiteral("loops"), 0, kMaxLoops, m_loops);
    if (options.isSet(QStringLiteral("quality"))) {
        m_quality = parseQuality(options.text(QStringLiteral("quality")));
        if (m_quality < 0)
            options.reject(QStringLiteral("--quality must be small, balanced, best or a number from 0 to 100, not '%1'")
                               .arg(options.text(QStringLiteral("quality"))));
    }
    if (options.isSet(QStringLiteral("size"))) {
        m_size = parseSize(options.text(QStringLiteral("size")));
        if (m_size.isEmpty())
            options.reject(
                QStringLiteral("--size must be WxH with a width and height of at least 1, e.g. 1280x720, not "
                               "'%1'")
                    .arg(options.text(QStringLiteral("size"))));
    }
    if (m_toMs >= 0 && m_toMs <= m_fromMs)
        options.reject(QStringLiteral("--to must be greater than --from"));

    if (options.isSet(QStringLiteral("format"))) {
        m_format = formatNumber(options.text(QStringLiteral("format")));
        if (m_format < 0) {
            options.reject(QStringLiteral("--format must be mp4, gif, apng or webp, not '%1'")
                               .arg(options.text(QStringLiteral("format"))));
        }
    } else {
        m_format = formatNumber(QFileInfo(m_file).suffix().toLower());
        if (m_format < 0) {
            options.reject(
                QStringLiteral("the suffix of '%1' is not a known format: use .mp4, .gif, .apng or .webp, or "
                               "--format")
                    .arg(m_file));
        }
    }
    return options.error();
}

QString ExportCommand::run()
{
    const StopSignal stop; // loading can take a while, too
    const LoadedRecording recording(m_directory);
    if (!recording.error().isEmpty())
        return recording.error();
    if (!recording.warning().isEmpty())
        Console::printError(QLatin1String("keldock: ") + recording.warning());

    KelExportRequest request;
    request.format = m_format;
    request.fps = m_fps > 0 ? m_fps : qBound(1, recording.manager()->fps(), kMaxFps);
    request.quality = m_quality;
    request.speed = m_speed;
    request.outputPath = m_file;
    request.loops = m_loops;
    request.size = recording.pixels();
    if (!m_size.isEmpty())
        request.size = request.size.scaled(m_size, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    request.trackDataDir = m_directory;
    request.playbackManager = recording.manager();
    QString rangeError = setRange(recording, &request);
    if (!rangeError.isEmpty())
        return rangeError;

    QElapsedTimer timer;
    timer.start();
    const QString fileName = QFileInfo(m_file).fileName();
    TerminalMonitor monitor(fileName, stop);
    KelExportPipeline pipeline(request, &monitor);
    const bool isComplete = pipeline.run();
    monitor.finish();
    if (!isComplete) {
        const QString error = pipeline.errorString();
        if (error.isEmpty())
            Console::leave(QStringLiteral("keldock: export cancelled, nothing was written"));
        return QStringLiteral("'%1' cannot be exported: %2").arg(m_file, error);
    }
    if (!pipeline.warningString().isEmpty())
        Console::printError(QLatin1String("keldock: ") + pipeline.warningString());
    Console::print(QStringLiteral("%1  %2, exported in %3\n")
                       .arg(m_file, Units::bytes(QFileInfo(m_file).size()), Units::seconds(timer.elapsed())));
    return QString();
}

QString ExportCommand::setRange(const LoadedRecording &recording, KelExportRequest *request) const
{
    if (m_fromMs < 0 && m_toMs < 0)
        return QString();
    const qint64 durationMs = recording.manager()->durationMs();
    if (durationMs <= 0)
        return QStringLiteral("the duration of '%1' is unknown, so --from and --to cannot be used").arg(m_directory);
    if (m_fromMs >= durationMs)
        return QStringLiteral("--from %1 is beyond the end of the recording, which is %2 ms long")
            .arg(m_fromMs)
            .arg(durationMs);
    request->trimStartMs = qMax(m_fromMs, 0);
    request->trimEndMs = static_cast<int>(m_toMs < 0 ? durationMs : qMin<qint64>(m_toMs, durationMs));
    return QString();
}
