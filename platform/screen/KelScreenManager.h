#pragma once

#include "screen/KelCursorSource.h"
#include "screen/KelScreenPermission.h"
#include "screen/KelScreenStreamer.h"

#include <QRect>
#include <QString>

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

/// Screen frames and pointer of an operating system or of a test. GUI thread.
class KelScreenBackend
{
public:
    virtual ~KelScreenBackend() = default;

    /// The name of the capture technology, such as "X11".
    virtual QString name() const { return {}; }

    /// Empty when the screen can be captured, otherwise the reason in English.
    virtual QString errorString() const { return {}; }

    /// Obtains what capturing `rect` needs from the system; `withPointer` when the pointer is wanted as well. Calls
    /// `done` once: before this returns null, or later, while the returned object exists, as late as a person answers
    /// the system's question. `done` may delete that object.
    virtual std::unique_ptr<KelScreenPreparation> prepare(const QRect &rect, bool withPointer,
                                                          const KelScreenPreparation::Done &done);

    /// Whether the pointer is part of the frames, where it is wanted, because its position cannot be read.
    virtual bool isPointerInFrames() const { return false; }

    /// A streamer for `rect` (logical pixels of the desktop); `withPointer` matters if isPointerInFrames(). Never null:
    /// a streamer that cannot work reports the reason in its errorString().
    virtual std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &rect, bool withPointer) = 0;

    /// The pointer, with positions in the same coordinates as `rect`. Null where the pointer is not available.
    virtual std::unique_ptr<KelCursorSource> createCursorSource(const QRect &rect);
};

/// The entry point of screen capture, a singleton. GUI thread, unless stated otherwise; the returned objects have their
/// own rules.
class KelScreenManager
{
public:
    static KelScreenManager *instance();

    /// Obtains what capturing `rect` (logical pixels of the desktop) needs from the system: before
    /// createScreenStreamer() and cursorSource(), and kept until then. See KelScreenBackend::prepare().
    std::unique_ptr<KelScreenPreparation> prepare(const QRect &rect, bool withPointer,
                                                  const KelScreenPreparation::Done &done);

    /// A new streamer for `rect` (logical pixels of the desktop). Its frames contain the pointer if isPointerInFrames()
    /// and `withPointer`. Never null; owned by the caller.
    KelScreenStreamer *createScreenStreamer(const QRect &rect, bool withPointer = true);

    /// The source of pointer snapshots for `rect`; null where the pointer is not available. Shared by all users,
    /// created anew when none is left. Any thread may call this while someone holds the source of that rectangle.
    std::shared_ptr<KelCursorSource> cursorSource(const QRect &rect);

    /// The name of the capture technology, such as "X11".
    QString backendName() const;

    /// Whether the pointer is part of the frames, where it is wanted, because its position cannot be read.
    bool isPointerInFrames() const;

    /// Empty when the screen can currently be captured, otherwise the reason ("no display", "Wayland without X", …) in
    /// English.
    QString errorString() const;

    /// Replaces the operating system's backend; null restores it. Objects created before keep working.
    void setBackend(std::unique_ptr<KelScreenBackend> backend);

private:
    KelScreenManager();
    ~KelScreenManager();
    Q_DISABLE_COPY(KelScreenManager)

    std::unique_ptr<KelScreenBackend> m_backend;
    std::mutex m_cursorMutex; // guards the members below
    std::vector<std::pair<QRect, std::weak_ptr<KelCursorSource>>> m_cursorSources;
};
