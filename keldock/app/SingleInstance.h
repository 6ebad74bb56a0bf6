#pragma once

#include <QLocalServer>
#include <QObject>

/// Allows one running instance for each user and display. A second one notifies the first and exits. Nothing that
/// another user does keeps the program from starting; where instances cannot find each other, each of them starts. GUI
/// thread.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    explicit SingleInstance(QObject *parent = nullptr);

    /// True in the first instance. In any other one it is false, and the first instance has been notified.
    bool claim();

signals:
    /// The user has started the program again.
    void startedAgain();

private:
    static bool notifyFirstInstance(const QString &server);

    const QString m_name;
    QLocalServer m_server;
};
