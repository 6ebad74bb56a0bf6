#pragma once

#include <chrono>
#include <functional>

namespace kel
{

/// Work that nobody waits for, such as letting go of what takes its time. Tasks run one after the other, the last ones
/// before the application object is gone. To be used from the GUI thread.
class BackgroundTasks
{
public:
    static void run(std::function<void()> task);

    /// Until all are over, or `limit` has passed.
    static void wait(std::chrono::milliseconds limit);
};

} // namespace kel
