#pragma once

#include <QLocalServer>
#include <QObject>

/// Lets one program run for a person and a display: a second one asks the first to show itself, and ends. GUI thread.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    explicit SingleInstance(QObject *parent = nullptr);

    /// True for the first program. A second one has been told to the first when it gets false.
    bool claim();

signals:
    /// Somebody has started the program once more.
    void startedAgain();

private:
    bool callFirst() const;

    const QString m_name;
    QLocalServer m_server;
};
