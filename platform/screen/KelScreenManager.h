#pragma once

#include "screen/KelCursorSource.h"
#include "screen/KelScreenStreamer.h"

#include <QRect>
#include <QString>

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

/// What an operating system (or a test) provides: pictures of rectangles of the screen, and the pointer. GUI thread.
class KelScreenBackend
{
public:
    virtual ~KelScreenBackend() = default;

    /// What pictures are taken with, as "X11".
    virtual QString name() const { return {}; }

    /// Empty when the screen can be captured, else why not, in English.
    virtual QString errorString() const { return {}; }

    /// Never null: a streamer that cannot work says why in its errorString().
    virtual std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &rect) = 0;

    /// The pointer, its positions as `rect` is given. Null where the pointer is never seen.
    virtual std::unique_ptr<KelCursorSource> createCursorSource(const QRect &rect);
};

/// The capture library's singleton. GUI thread, except where said, and for what it hands out.
class KelScreenManager
{
public:
    static KelScreenManager *instance();

    /// A new streamer for `rect` (logical pixels of the desktop). Never null; owned by the caller.
    KelScreenStreamer *createScreenStreamer(const QRect &rect);

    /// The source of snapshots of the pointer for `rect`; null where the pointer is never seen. One for all who use it
    /// at the same time, made anew once nobody does. While somebody holds it, any thread may ask for it.
    std::shared_ptr<KelCursorSource> cursorSource(const QRect &rect);

    /// What pictures are taken with, as "X11".
    QString backendName() const;

    /// Empty when the screen can be captured now, else why not ("no display", "Wayland without X", …), in English.
    QString errorString() const;

    /// Replaces the operating system's backend; null puts it back. What was handed out before keeps
    /// working.
    void setBackend(std::unique_ptr<KelScreenBackend> backend);

private:
    KelScreenManager();
    ~KelScreenManager();
    Q_DISABLE_COPY(KelScreenManager)

    std::unique_ptr<KelScreenBackend> m_backend;
    std::mutex m_cursorMutex; // guards what follows
    std::vector<std::pair<QRect, std::weak_ptr<KelCursorSource>>> m_cursorSources;
};
