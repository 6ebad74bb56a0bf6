#include "cli/MessageLog.h"

#include "cli/Console.h"

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

void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    // Logged from every thread of a recording.
    std::lock_guard lock(state().mutex);
    const bool isCritical = type == QtCriticalMsg && qstrcmp(context.category, "default") == 0;
    if (isCritical && state().firstCritical.isEmpty())
        state().firstCritical = message;
    if (state().verbose || type == QtFatalMsg)
        Console::printError(message);
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
