#pragma once

#include "screen/wayland/ShmBuffer.h"
#include "screen/wayland/WaylandConnection.h"

#include <QDeadlineTimer>
#include <QRegion>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace kel
{

/// Has the compositor copy a part of an output after each change, and keeps the newest picture. All of it runs on the
/// thread of the connection, except where noted.
class OutputCapture
{
public:
    /// `region` is in logical pixels from the output's top-left corner, `target` its place in the frame in physical
    /// pixels. `changed` is called when hasChanged() or problem() has become true.
    OutputCapture(WaylandConnection &connection, const WaylandOutput &output, const QRect &region, const QRect &target,
                  bool withPointer, std::function<void()> changed);
    OutputCapture(const OutputCapture &) = delete;
    OutputCapture &operator=(const OutputCapture &) = delete;

    /// Requests the first picture, and again some time after a failure.
    void requestIfDue();

    /// Whether the output still exists.
    bool isConnected() const { return m_output.isConnected(); }

    /// Why no picture can ever come, in English; otherwise empty.
    QString problem() const { return m_problem; }

    /// Whether there is a picture. Any thread.
    bool hasPicture() const { return m_hasPicture; }
    /// Whether the picture has changed since the last take(). Any thread.
    bool hasChanged() const;
    /// Whether the next take() must be of the whole. Any thread.
    bool needsWhole() const;

    /// Copies what has changed, or the whole of it, into `frame`. Any thread.
    void take(QImage &frame, bool whole);

private:
    static const zwlr_screencopy_frame_v1_listener kListener;

    /// A buffer, and how to read it.
    struct Picture {
        std::unique_ptr<ShmBuffer> buffer;
        QRect source; // the part of it that is shown, in its pixels when upright
        QRect target; // in the frame: less than that of the capture when the output has shrunk
        int transform = WL_OUTPUT_TRANSFORM_NORMAL;
        bool isUpsideDown = false;

        bool hasSameLayout(const Picture &other) const;
    };

    void request();
    void copy();
    void publish();
    void fail();
    void giveUp(const QString &problem);
    QRegion changedPart() const;
    void copyPart(const QRect &part, QImage &frame) const;

    WaylandConnection &m_connection;
    const WaylandOutput &m_output;
    const QRect m_region;
    const QRect m_target;
    const bool m_withPointer;
    const std::function<void()> m_changedHandler;

    WaylandPtr<zwlr_screencopy_frame_v1> m_frame; // the request that is under way
    QRect m_visible;                              // the part of the region on the output
    ShmBuffer::Shape m_shape;                     // of its picture
    QRegion m_damage;
    QDeadlineTimer m_nextRequest{0}; // while none is under way
    QString m_problem;
    std::unique_ptr<Picture> m_next; // what the compositor writes

    std::atomic<bool> m_hasPicture{false};
    mutable std::mutex m_mutex;        // guards what follows
    std::unique_ptr<Picture> m_newest; // null before the first
    QRegion m_changed;                 // in pixels of its buffer
    bool m_needsWhole = true;
};

} // namespace kel
