#include "cli/CommandLine.h"

#include "cli/commands/Command.h"
#include "cli/commands/ExportCommand.h"
#include "cli/commands/FrameCommand.h"
#include "cli/commands/InfoCommand.h"
#include "cli/commands/RecordCommand.h"
#include "cli/commands/SelfTestCommand.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/MessageLog.h"

#include <KelMovie/KelMovieUI.h>
#include <console/ProgramArguments.h>
#include <console/Terminal.h>

#include <QGuiApplication>

#include <memory>
#include <vector>

using namespace kel;

namespace
{

enum ExitStatus { Done = 0, Failed = 1, WrongUsage = 2 };

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
    QString text = QStringLiteral("keldock records the screen, shows what a recording holds and exports it.\n"
                                  "\n"
                                  "Usage: keldock                      opens the recorder\n"
                                  "       keldock COMMAND [ARGUMENTS]\n"
                                  "\n"
                                  "Commands:\n");
    for (const auto &command : commands)
        text += QStringLiteral("  %1 %2\n").arg(command->name(), -10).arg(command->summary());
    text += QStringLiteral("\n"
                           "Options:\n"
                           "  --help     this text, or that of a command: keldock record --help\n"
                           "  --version  the versions of program and engine\n"
                           "  --verbose  for every command: show the engine's log on standard error\n"
                           "\n"
                           "A first recording:\n"
                           "  keldock record --screen 0 --duration 10 --out hello\n"
                           "  keldock info hello\n"
                           "  keldock export hello hello.mp4\n"
                           "  keldock export hello hello.gif --from 2000 --to 5000\n"
                           "\n"
                           "Exit status: 0 done, 1 it failed, 2 wrong usage.\n");
    return text;
}

QString version()
{
    return QStringLiteral("keldock %1 (KelMovie %2)\n").arg(QStringLiteral(KELDOCK_VERSION), KelMovieUI::version());
}

bool asksForHelp(const QStringList &arguments)
{
    const QStringList options = arguments.mid(0, arguments.indexOf(QStringLiteral("--")));
    return options.contains(QStringLiteral("--help")) || options.contains(QStringLiteral("-h"));
}

/// Without a display Qt's ordinary platform ends the process; with a second choice the command can say what is wrong.
void choosePlatform(bool needsDisplay)
{
    const QByteArray wanted = qgetenv("QT_QPA_PLATFORM");
    if (!needsDisplay && wanted.isEmpty())
        qputenv("QT_QPA_PLATFORM", Terminal::windowlessPlatform());
    else if (needsDisplay && !wanted.contains(';'))
        qputenv("QT_QPA_PLATFORM",
                (wanted.isEmpty() ? QByteArray(Terminal::desktopPlatform()) : wanted) + ";offscreen");
}

ExitStatus failed(const QString &error)
{
    Console::printError(QStringLiteral("keldock: ") + error.simplified());
    return Failed;
}

ExitStatus wrongUsage(const QString &context, const QString &error)
{
    Console::printError(QStringLiteral("%1: %2").arg(context, error));
    Console::printError(QStringLiteral("Try '%1 --help'.").arg(context));
    return WrongUsage;
}

ExitStatus finished()
{
    return Console::flush() ? Done : failed(QStringLiteral("cannot write to standard output"));
}

ExitStatus runCommand(Command &command, const QStringList &arguments, char *programName)
{
    if (asksForHelp(arguments)) {
        Console::print(command.help());
        return finished();
    }
    const QString usageError = command.parse(arguments);
    if (!usageError.isEmpty())
        return wrongUsage(QStringLiteral("keldock ") + command.name(), usageError);

    MessageLog::install(arguments.contains(QStringLiteral("--verbose")));
    choosePlatform(command.needsDisplay());
    int applicationArgc = 1; // the arguments are ours, not Qt's
    QGuiApplication application(applicationArgc, &programName);
    const QString error = command.run();
    return error.isEmpty() ? finished() : failed(error);
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
        return wrongUsage(QStringLiteral("keldock"), QStringLiteral("there is no command '%1'").arg(first));
    return finished();
}
