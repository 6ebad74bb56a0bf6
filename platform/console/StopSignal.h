#pragma once

#include <QObject>

#include <memory>

namespace kel
{

/// Turns what asks a program to end (Ctrl-C, a closed terminal, a shutdown) into a wish to stop, so that what was begun
/// can be finished properly. One at a time. A signal that was ignored when the program started (nohup) stays ignored; a
/// broken pipe or a file size limit does not end the program while this lives.
class StopSignal : public QObject
{
    Q_OBJECT

public:
    StopSignal();
    ~StopSignal() override;

    /// At once, also where no event loop runs.
    bool isRaised() const;

signals:
    /// From the event loop, once.
    void raised();

private:
    std::unique_ptr<QObject> m_notifier; // in the event loop, of what happened outside of it
};

} // namespace kel
