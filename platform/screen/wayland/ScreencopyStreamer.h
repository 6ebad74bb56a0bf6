#pragma once

#include "screen/KelScreenStreamer.h"
#include "screen/wayland/OutputCapture.h"

#include <QRect>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace kel
{

/// Captures a rectangle of the desktop through its own connection to the compositor, on a thread of its own, which
/// requests the next picture as soon as one has come: frames are of the moment at which they are asked for.
///
/// When the caller passes the image of the previous capture, only what has changed since then is copied.
class ScreencopyStreamer final : public KelScreenStreamer
{
public:
    /// `rect` is in logical pixels, `frameSize` in physical ones. The connection must offer to copy the screen.
    ScreencopyStreamer(std::unique_ptr<WaylandConnection> connection, const QRect &rect, const QSize &frameSize,
                       bool withPointer);
    ~ScreencopyStreamer() override;

    bool hasFrameChanged() override;
    bool captureTo(QImage &image) override;
    QString errorString() const override;
    bool isStalled() const override { return m_isStalled; }

private:
    void run();
    void checkOutputs();
    bool awaitPictures();
    bool prepare(QImage &image) const;
    void setError(const QString &error);

    const std::unique_ptr<WaylandConnection> m_connection;
    const QSize m_frameSize;
    std::vector<std::unique_ptr<OutputCapture>> m_captures;
    qint64 m_filledKey = 0; // identifies the image of the last capture in its unmodified state
    int m_wake = -1;        // readable when the thread must end
    std::atomic<bool> m_isStalled{false};

    mutable std::mutex m_mutex; // guards m_error
    QString m_error;
    std::condition_variable m_pictureCame;
    std::thread m_thread; // last, because it uses all of the above
};

} // namespace kel
