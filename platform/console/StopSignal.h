#pragma once

#include <QObject>

#include <memory>

namespace kel
{

/// Turns termination requests (Ctrl-C, a closed terminal, a shutdown) into a signal, so that work in progress can be
/// completed. At most one instance at a time. A signal that was already ignored at program start (nohup) stays ignored.
class StopSignal : public QObject
{
    Q_OBJECT

public:
    StopSignal();
    ~StopSignal() override;

    /// True as soon as a request arrived, even when no event loop runs.
    bool isRaised() const;

signals:
    /// Emitted once, from the event loop.
    void raised();

private:
    std::unique_ptr<QObject> m_notifier; // forwards the request to the event loop
};

} // namespace kel
