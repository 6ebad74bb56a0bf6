#pragma once

#include "screen/KelScreenStreamer.h"

#include <QRect>
#include <QString>

#include <memory>

/// What an operating system (or a test) provides: streamers for rectangles of the screen.
class KelScreenBackend
{
public:
    virtual ~KelScreenBackend() = default;

    /// Empty when the screen can be captured, else why not, in English.
    virtual QString errorString() const { return {}; }

    /// Never null: a streamer that cannot work says why in its errorString().
    virtual std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &rect) = 0;
};

/// The capture library's singleton. GUI thread, except for the streamers that it hands out.
class KelScreenManager
{
public:
    static KelScreenManager *instance();

    /// A new streamer for `rect` (logical pixels of the desktop). Never null; owned by the caller.
    KelScreenStreamer *createScreenStreamer(const QRect &rect);

    /// Empty when the screen can be captured now, else why not ("no display", "Wayland without X", …), in English.
    QString errorString() const;

    /// Replaces the operating system's backend; null puts it back. Streamers handed out before keep working.
    void setBackend(std::unique_ptr<KelScreenBackend> backend);

private:
    KelScreenManager();
    ~KelScreenManager();
    Q_DISABLE_COPY(KelScreenManager)

    std::unique_ptr<KelScreenBackend> m_backend;
};
