#include "cli/terminal/MessageLog.h"

#include "cli/terminal/Console.h"

#include <QtGlobal>

#include <mutex>

namespace
{

struct State {
    std::mutex mutex;
    bool verbose = false;
    QString firstCritical;
};

State &state()
{
    static State instance;
    return instance;
}

/// The warning without the prefix "[Class] ", if it is from a class whose warnings concern the user; otherwise empty.
QString warningToShow(QtMsgType type, const QString &message)
{
    for (const char *source : {"[KelKeyMouseHook] ", "[KelCursorPixmap] "}) {
        if (type == QtWarningMsg && message.startsWith(QLatin1String(source)))
            return message.mid(int(qstrlen(source)));
    }
    return QString();
}

/// Whether this program or the module logged it, rather than Qt.
bool isOurs(const char *category)
{
    return qstrcmp(category, "default") == 0 || qstrncmp(category, "kelmovie.", 9) == 0;
}

void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    // Messages come from all threads of a recording.
    std::lock_guard lock(state().mutex);
    if (type == QtCriticalMsg && isOurs(context.category) && state().firstCritical.isEmpty())
        state().firstCritical = message;
    const QString warning = warningToShow(type, message);
    if (state().verbose || type == QtFatalMsg)
        Console::printError(message);
    else if (!warning.isEmpty())
        Console::printError(QLatin1String("keldock: ") + warning + QLatin1String("; continuing without it"));
}

} // namespace

void MessageLog::install(bool verbose)
{
    state().verbose = verbose;
    qInstallMessageHandler(handle);
}

QString MessageLog::firstCritical()
{
    std::lock_guard lock(state().mutex);
    return state().firstCritical;
}
