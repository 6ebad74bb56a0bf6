#include "common/ExitGuard.h"

#include <QCoreApplication>
#include <QSemaphore>
#include <QString>
#include <QThread>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

namespace
{

constexpr int kLimitMs = 15000; // a recorder may wait 10 s for its tracks

QtMessageHandler previousHandler = nullptr;

std::vector<ExitGuard *> &guards()
{
    static auto *const all = new std::vector<ExitGuard *>; // never destroyed, because it is used at the exit
    return *all;
}

} // namespace

ExitGuard::ExitGuard(std::function<void()> complete)
    : m_complete(std::move(complete))
{
    static bool isWatching = false;
    if (!std::exchange(isWatching, true)) {
        std::atexit(completeAll);
        previousHandler = qInstallMessageHandler(watchMessages);
    }
    guards().push_back(this);
}

ExitGuard::~ExitGuard()
{
    guards().erase(std::remove(guards().begin(), guards().end(), this), guards().end());
}

/// On X11, Qt calls exit(). On Wayland it calls _exit(), on a thread of its own, and nothing but its message comes
/// before.
void ExitGuard::watchMessages(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    previousHandler(type, context, message);
    if (!qApp || !message.startsWith(QLatin1String("The Wayland connection ")))
        return;
    if (QThread::currentThread() == qApp->thread())
        return completeAll();
    const auto done = std::make_shared<QSemaphore>();
    QMetaObject::invokeMethod(
        qApp,
        [done] {
            completeAll();
            done->release();
        },
        Qt::QueuedConnection);
    done->tryAcquire(1, kLimitMs);
}

void ExitGuard::completeAll()
{
    for (const ExitGuard *guard : std::exchange(guards(), {}))
        guard->m_complete();
}
