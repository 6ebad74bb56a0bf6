#include "tasks/BackgroundTasks.h"

#include <QCoreApplication>

#include <future>
#include <utility>

namespace kel
{

namespace
{

std::shared_future<void> lastTask;

void waitForTasks()
{
    lastTask = {};
}

} // namespace

void BackgroundTasks::run(std::function<void()> task)
{
    if (!lastTask.valid())
        qAddPostRoutine(waitForTasks);
    lastTask = std::async(std::launch::async, [before = std::move(lastTask), task = std::move(task)]() mutable {
                   if (before.valid())
                       before.wait();
                   before = {};
                   task();
                   task = nullptr; // destroys what it captured
               }).share();
}

void BackgroundTasks::wait(std::chrono::milliseconds limit)
{
    if (lastTask.valid())
        lastTask.wait_for(limit);
}

} // namespace kel
