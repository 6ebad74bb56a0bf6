#pragma once

#include <QString>

#include <mutex>

namespace av
{

/// Keeps the first failure of a component that works on several threads.
class FirstError
{
public:
    /// Keeps the text when it is the first. True if it was.
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
