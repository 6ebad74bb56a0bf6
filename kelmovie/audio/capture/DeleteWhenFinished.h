#pragma once

#include <QThread>

namespace kel
{

/// Gives up ownership of a thread that may be in a call which does not return: it is deleted when it has ended.
inline void deleteWhenFinished(QThread *thread)
{
    thread->setParent(nullptr);
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    if (!thread->isRunning())
        thread->deleteLater();
}

} // namespace kel
