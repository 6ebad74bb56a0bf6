#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

/// Ends the process if it does not end by itself in time. Destroying a QGuiApplication waits for the X server, which
/// may hang.
class ExitLimit
{
public:
    ExitLimit() = default;
    ~ExitLimit();
    ExitLimit(const ExitLimit &) = delete;
    ExitLimit &operator=(const ExitLimit &) = delete;

    /// From now on, the process ends with `status` after two seconds unless this object is destroyed before. All files
    /// must be complete.
    void start(int status);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isOver = false;
    std::thread m_thread;
};
