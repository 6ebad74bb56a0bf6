#pragma once

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

/// A temporary home directory for a test that uses settings, cache or trash. Create it before any of them is used.
class ScratchHome
{
public:
    ScratchHome()
    {
        for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "HOME"})
            qputenv(variable, m_dir.path().toLocal8Bit());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_dir.path());
        QCoreApplication::setApplicationName("test");
    }

    QString path(const QString &name = QString()) const { return m_dir.filePath(name); }

private:
    QTemporaryDir m_dir;
};
