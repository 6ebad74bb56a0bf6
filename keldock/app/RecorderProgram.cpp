#include "app/RecorderProgram.h"

#include "app/DockApplication.h"
#include "app/SingleInstance.h"
#include "app/Translations.h"
#include "common/ExitLimit.h"
#include "settings/DockConfigIO.h"
#include "settings/DockSettings.h"
#include "widgets/ProgramIcon.h"

#include <KelMovie/KelMovieConfig.h>

#include <console/Terminal.h>

#include <QApplication>

#include <cstdio>

using namespace kel;

namespace
{

constexpr const char *kOffscreen = "offscreen";

/// Without a display, Qt's desktop platform aborts with an unhelpful message. With a fallback the program can report
/// the error itself.
void addPlatformFallback(const QByteArray &requestedPlatform)
{
    if (requestedPlatform.isEmpty())
        qputenv("QT_QPA_PLATFORM", QByteArray(Terminal::desktopPlatform()) + ';' + kOffscreen);
}

bool hasDisplay(const QByteArray &requestedPlatform)
{
    return QGuiApplication::platformName() != QLatin1String(kOffscreen) || requestedPlatform == kOffscreen;
}

} // namespace

int RecorderProgram::run(int argc, char **argv)
{
    const QByteArray requestedPlatform = qgetenv("QT_QPA_PLATFORM");
    addPlatformFallback(requestedPlatform);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    ExitLimit limit; // of destroying the application
    QApplication application(argc, argv);
    if (!hasDisplay(requestedPlatform)) {
        std::fputs("keldock: there is no display to open a window on. For the command line, see keldock --help.\n",
                   stderr);
        return 1;
    }
    QCoreApplication::setApplicationName(QStringLiteral("keldock"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KELDOCK_VERSION));
    // DockApplication decides when to quit: the toolbar may be hidden while the program continues to run.
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(programIcon());

    SingleInstance instance;
    if (!instance.claim())
        return 0;
    DockConfigIO io;
    KelMovieConfigInit(&io);
    DockSettings settings;
    settings.bind(io);
    Translations::install(settings.language);
    // Before any widget exists: Qt does not notice a changed style sheet on a widget that was never shown.
    applyTheme(settings);
    int status = 0;
    {
        DockApplication dock(io, settings, instance);
        dock.start();
        status = QApplication::exec();
    }
    KelMovieConfigInit(nullptr);
    limit.start(status);
    return status;
}
