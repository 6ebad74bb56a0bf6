#pragma once

#include "screen/KelScreenStreamer.h"
#include "screen/x11/X11Damage.h"
#include "screen/x11/X11ImageReader.h"
#include "screen/x11/XcbConnection.h"

#include <QRect>
#include <QRegion>

#include <atomic>
#include <memory>
#include <mutex>

namespace kel
{

/// Captures a rectangle of the root window through its own connection.
///
/// When the caller passes the image of the previous capture, only the damage since then is read; any other image is
/// filled completely. The rectangle keeps its position and size when the screen is resized.
class X11ScreenStreamer final : public KelScreenStreamer
{
public:
    /// `rect` is in physical pixels, at most 32767 wide and high; the connection must be open.
    X11ScreenStreamer(std::unique_ptr<XcbConnection> connection, const QRect &rect);

    bool hasFrameChanged() override;
    bool captureTo(QImage &image) override;
    QString errorString() const override;
    bool isStalled() const override { return m_isStalled; }

private:
    using Blocks = std::vector<X11ImageReader::Block>;

    bool update();
    bool capture(bool whole, QImage &image);
    bool queryRootSize();
    void setRootSize(const QSize &size);
    void takeDamage();
    QVector<QRect> rectsToRead(bool whole) const;
    bool paint(const Blocks &blocks, bool whole, QImage &image) const;
    void reportFailure();
    void reportStall();
    void setError(const QString &error);

    const std::unique_ptr<XcbConnection> m_connection;
    const QRect m_rect;
    X11Damage m_damage;
    X11ImageReader m_reader;

    QSize m_rootSize;
    QRect m_visible;              // the part of the rectangle on the screen
    QRegion m_changed;            // its known damage since the last capture
    bool m_needsFullRead = true;  // all of it has to be read
    bool m_isDamageFresh = false; // m_changed was updated since the last capture
    qint64 m_filledKey = 0;       // identifies the image of the last capture in its unmodified state

    std::atomic<bool> m_isStalled{false};
    mutable std::mutex m_errorMutex;
    QString m_error;
};

} // namespace kel
