#include "cli/commands/SelfTestCommand.h"

#include "cli/commands/Arguments.h"
#include "cli/terminal/Console.h"

#include <KelMovie/KelMovieSelfTest.h>

namespace
{

QString text(const KelMovieSelfTest::Check &check)
{
    QString text =
        QStringLiteral("\n%1: %2\n")
            .arg(check.name, check.passed() ? QStringLiteral("passed") : QStringLiteral("FAILED: ") + check.error);
    for (const QString &finding : check.findings)
        text += QStringLiteral("  ") + finding + QLatin1Char('\n');
    for (const QString &warning : check.warnings)
        text += QStringLiteral("  warning: ") + warning + QLatin1Char('\n');
    return text;
}

} // namespace

QString SelfTestCommand::help() const
{
    return QStringLiteral("Tells what can be recorded and exported on this computer, and tries it: records the screen\n"
                          "for half a second, encodes and decodes every format, looks for the devices. What is\n"
                          "written meanwhile is removed again. A missing sound device is a warning.\n"
                          "\n"
                          "Usage: keldock selftest\n"
                          "\n"
                          "Options:\n"
                          "  --verbose  show the engine's log on standard error\n"
                          "  --help     this text\n"
                          "\n"
                          "Exit status: 0 all passed, 1 something failed.\n");
}

QString SelfTestCommand::parse(const QStringList &arguments)
{
    Arguments options({}, arguments);
    options.positional({});
    return options.error();
}

QString SelfTestCommand::run()
{
    Console::print(KelMovieSelfTest::featureReport());
    int failures = 0;
    for (const KelMovieSelfTest::Check &check : KelMovieSelfTest::runChecks()) {
        Console::print(text(check));
        failures += check.passed() ? 0 : 1;
    }
    return failures == 0 ? QString() : QStringLiteral("%1 of the checks failed").arg(failures);
}
