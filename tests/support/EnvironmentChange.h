#pragma once

#include <QByteArray>
#include <QString>

/// Sets an environment variable, or unsets it if the value is null, and restores it on destruction.
class EnvironmentChange
{
public:
    EnvironmentChange(const char *name, const QByteArray &value)
        : m_name(name)
        , m_before(qEnvironmentVariableIsSet(name) ? qgetenv(name) : QByteArray())
    {
        set(value);
    }
    ~EnvironmentChange() { set(m_before); }
    Q_DISABLE_COPY(EnvironmentChange)

private:
    void set(const QByteArray &value)
    {
        if (value.isNull())
            qunsetenv(m_name);
        else
            qputenv(m_name, value);
    }

    const char *const m_name;
    const QByteArray m_before;
};

/// Sets the directory for temporary files, on all systems.
inline void setTemporaryPath(const QString &path)
{
    for (const char *name : {"TMPDIR", "TMP", "TEMP"})
        qputenv(name, path.toLocal8Bit());
}
