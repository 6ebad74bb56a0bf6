#include "cli/commands/SelfTestCommand.h"

#include "cli/commands/Arguments.h"
#include "cli/terminal/Console.h"

#include <KelMovie/KelMovieSelfTest.h>
#include <KelMovie/KelMovieUI.h>

namespace
{

QString text(const KelMovieSelfTest::Check &check)
{
    QString text =
        QStringLiteral("\n%1: %2\n")
            .arg(check.name, check.passed() ? QStringLiteral("passed") : QLatin1String("FAILED: ") + check.error);
    for (const QString &finding : check.findings)
        text += QLatin1String("  ") + finding + QLatin1Char('\n');
    for (const QString &warning : check.warnings)
        text += QLatin1String("  warning: ") + warning + QLatin1Char('\n');
    return text;
}

} // namespace

QString SelfTestCommand::help() const
{
    return QStringLiteral("Tests what can be recorded and exported on this computer: records the screen for half a\n"
                          "second, encodes and decodes every format, and looks for devices. Temporary files are\n"
                          "removed. A missing sound device is only a warning.\n"
                          "\n"
                          "Usage: keldock selftest\n"
                          "\n"
                          "Options:\n"
                          "  --verbose  show the engine's log on standard error\n"
                          "  --help     show this help\n"
                          "\n"
                          "Exit status: 0 if all checks passed, 1 otherwise.\n");
}

QString SelfTestCommand::parse(const QStringList &arguments)
{
    Arguments options({}, arguments);
    options.positional({});
    return options.error();
}

QString SelfTestCommand::run()
{
    KelMovieUI::setReadsInputDevices(true); // to say whether it would work
    Console::print(KelMovieSelfTest::featureReport());
    int failures = 0;
    for (const KelMovieSelfTest::Check &check : KelMovieSelfTest::runChecks()) {
        Console::print(text(check));
        failures += check.passed() ? 0 : 1;
    }
    return failures == 0 ? QString() : QStringLiteral("failed checks: %1").arg(failures);
}
