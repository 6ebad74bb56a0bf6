#pragma once

#include "screen/portal/CastPicture.h"

#include <QObject>
#include <QString>

#include <memory>

namespace kel
{

/// One monitor of a screen cast, as PipeWire delivers it. Its own thread copies each picture and returns the buffer at
/// once, because a compositor without buffers stops.
class CastStream : public QObject
{
    Q_OBJECT

public:
    /// `remote` is a connection to PipeWire, which this takes over; `node` is the stream's number there.
    CastStream(int remote, quint32 node);
    ~CastStream() override;

    const CastPicture &picture() const;

    /// Reports `reason` from now on, unless the stream has ended already. Any thread.
    void end(const QString &reason);

    /// Why no pictures come, in English; empty while they do. Compositors that end only pause the stream, so that a
    /// pause counts as an end after a while. Any thread.
    QString errorString() const;

    /// True while the compositor has paused the stream for longer than a moment. Any thread.
    bool isPaused() const;

signals:
    /// The first picture has arrived. Emitted on the stream's thread.
    void pictureArrived();
    /// The stream has ended. Emitted on the stream's thread or by end().
    void ended();

private:
    class Private;
    const std::unique_ptr<Private> d;
};

} // namespace kel
