#pragma once

#include <chrono>
#include <functional>

namespace kel
{

/// Runs work that nobody waits for, such as destroying what takes long to shut down. Tasks run one after the other on
/// another thread, and all finish before the application object is destroyed. Call it on the GUI thread.
class BackgroundTasks
{
public:
    static void run(std::function<void()> task);

    /// Blocks until all tasks are finished, or `limit` has passed.
    static void wait(std::chrono::milliseconds limit);
};

} // namespace kel
