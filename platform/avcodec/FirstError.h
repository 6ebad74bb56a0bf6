#pragma once

#include <QString>

#include <mutex>

namespace av
{

/// Keeps the first error of a component that runs on several threads. Thread-safe.
class FirstError
{
public:
    /// Stores the text unless there is one already. True if it was stored.
    bool set(const QString &text)
    {
        std::lock_guard lock(m_mutex);
        if (!m_text.isEmpty())
            return false;
        m_text = text;
        return true;
    }

    QString text() const
    {
        std::lock_guard lock(m_mutex);
        return m_text;
    }

    bool isSet() const { return !text().isEmpty(); }

private:
    mutable std::mutex m_mutex;
    QString m_text;
};

} // namespace av
