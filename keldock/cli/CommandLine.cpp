#include "cli/CommandLine.h"

#include "cli/commands/Command.h"
#include "cli/commands/ExportCommand.h"
#include "cli/commands/FrameCommand.h"
#include "cli/commands/InfoCommand.h"
#include "cli/commands/RecordCommand.h"
#include "cli/commands/SelfTestCommand.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/MessageLog.h"
#include "common/ExitLimit.h"

#include <KelMovie/KelMovieUI.h>
#include <console/ProgramArguments.h>
#include <console/Terminal.h>

#include <QGuiApplication>

#include <memory>
#include <vector>

using namespace kel;

namespace
{

enum ExitStatus { Success = 0, Failure = 1, WrongUsage = 2 };

using Commands = std::vector<std::unique_ptr<Command>>;

Commands allCommands()
{
    Commands commands;
    commands.push_back(std::make_unique<RecordCommand>());
    commands.push_back(std::make_unique<InfoCommand>());
    commands.push_back(std::make_unique<ExportCommand>());
    commands.push_back(std::make_unique<FrameCommand>());
    commands.push_back(std::make_unique<SelfTestCommand>());
    return commands;
}

Command *find(const Commands &commands, const QString &name)
{
    for (const auto &command : commands) {
        if (command->name() == name)
            return command.get();
    }
    return nullptr;
}

QString overview(const Commands &commands)
{
    QString text = QStringLiteral("Records the screen, and shows and exports recordings.\n"
                                  "\n"
                                  "Usage: keldock                      open the recorder\n"
                                  "       keldock COMMAND [ARGUMENTS]\n"
                                  "\n"
                                  "Commands:\n");
    for (const auto &command : commands)
        text += QStringLiteral("  %1 %2\n").arg(command->name(), -10).arg(command->summary());
    text += QStringLiteral("\n"
                           "Options:\n"
                           "  --help     show this help, or that of a command: keldock record --help\n"
                           "  --version  show the versions of the program and the recording engine\n"
                           "  --verbose  with any command: show the engine's log on standard error\n"
                           "\n"
                           "Getting started:\n"
                           "  keldock record --screen 0 --duration 10 --out hello\n"
                           "  keldock info hello\n"
                           "  keldock export hello hello.mp4\n"
                           "  keldock export hello hello.gif --from 2000 --to 5000\n"
                           "\n"
                           "Exit status: 0 success, 1 failure, 2 wrong usage.\n");
    return text;
}

QString version()
{
    return QStringLiteral("keldock %1 (KelMovie %2)\n").arg(QStringLiteral(KELDOCK_VERSION), KelMovieUI::version());
}

bool isHelpRequested(const QStringList &arguments)
{
    const QStringList options = arguments.mid(0, arguments.indexOf(QStringLiteral("--")));
    return options.contains(QStringLiteral("--help")) || options.contains(QStringLiteral("-h"));
}

/// Without a display, Qt's desktop platform aborts. With a fallback the command can report the error itself.
void choosePlatform(bool needsDisplay)
{
    const QByteArray requested = qgetenv("QT_QPA_PLATFORM");
    if (!needsDisplay && requested.isEmpty())
        qputenv("QT_QPA_PLATFORM", Terminal::windowlessPlatform());
    else if (needsDisplay && !requested.contains(';'))
        qputenv("QT_QPA_PLATFORM",
                (requested.isEmpty() ? QByteArray(Terminal::desktopPlatform()) : requested) + ";offscreen");
}

ExitStatus failed(const QString &error)
{
    Console::printError(QLatin1String("keldock: ") + error.simplified());
    return Failure;
}

ExitStatus wrongUsage(const QString &context, const QString &error)
{
    Console::printError(QStringLiteral("%1: %2").arg(context, error));
    Console::printError(QStringLiteral("Try '%1 --help'.").arg(context));
    return WrongUsage;
}

ExitStatus finished()
{
    // A reader that has seen enough is no failure of the command.
    return Console::flush() || Console::hasReaderGone() ? Success
                                                        : failed(QStringLiteral("cannot write to standard output"));
}

ExitStatus runCommand(Command &command, const QStringList &arguments, char *programName)
{
    if (isHelpRequested(arguments)) {
        Console::print(command.help());
        return finished();
    }
    const QString usageError = command.parse(arguments);
    if (!usageError.isEmpty())
        return wrongUsage(QLatin1String("keldock ") + command.name(), usageError);

    MessageLog::install(arguments.contains(QStringLiteral("--verbose")));
    choosePlatform(command.needsDisplay());
    ExitLimit limit;         // of destroying the application
    int applicationArgc = 1; // hides the arguments from Qt
    QGuiApplication application(applicationArgc, &programName);
    const QString error = command.run();
    const ExitStatus status = error.isEmpty() ? finished() : failed(error);
    limit.start(status);
    return status;
}

} // namespace

int CommandLine::run(int argc, char **argv)
{
    QStringList arguments = programArguments(argc, argv);
    const Commands commands = allCommands();
    QString first = arguments.takeFirst();
    if (first == QLatin1String("help")) {
        first = arguments.isEmpty() ? QStringLiteral("--help") : arguments.takeFirst();
        arguments.prepend(QStringLiteral("--help"));
    }
    if (Command *command = find(commands, first))
        return runCommand(*command, arguments, argv[0]);
    if (first == QLatin1String("--version"))
        Console::print(version());
    else if (first == QLatin1String("--help") || first == QLatin1String("-h"))
        Console::print(overview(commands));
    else
        return wrongUsage(QStringLiteral("keldock"), QStringLiteral("unknown command '%1'").arg(first));
    return finished();
}
