#pragma once

#include "screen/KelScreenStreamer.h"
#include "screen/x11/X11Damage.h"
#include "screen/x11/X11ImageReader.h"
#include "screen/x11/XcbConnection.h"

#include <QRect>
#include <QRegion>

#include <memory>
#include <mutex>

namespace kel
{

/// Captures a rectangle of the root window over a connection of its own.
///
/// Only what was drawn to since the last capture is read, as long as the caller hands in the image of that capture;
/// any other image is filled anew. The rectangle keeps its place and size when the screen is resized.
class X11ScreenStreamer final : public KelScreenStreamer
{
public:
    /// `rect` is in physical pixels, at most 32767 wide and high; the connection must be open.
    X11ScreenStreamer(std::unique_ptr<XcbConnection> connection, const QRect &rect);

    bool hasFrameChanged() override;
    bool captureTo(QImage &image) override;
    QString errorString() const override;

private:
    using Blocks = std::vector<X11ImageReader::Block>;

    bool update();
    bool capture(bool whole, QImage &image);
    bool queryRootSize();
    void setRootSize(const QSize &size);
    void takeDamage();
    QVector<QRect> rectsToRead(bool whole) const;
    bool paint(const Blocks &blocks, bool whole, QImage &image) const;
    void explainFailure();
    void setError(const QString &error);

    const std::unique_ptr<XcbConnection> m_connection;
    const QRect m_rect;
    X11Damage m_damage;
    X11ImageReader m_reader;

    QSize m_rootSize;
    QRect m_visible;          // the part of the rectangle that lies on the screen
    QRegion m_changed;        // the parts of it that were drawn to since the last capture, as far as known
    bool m_everything = true; // all of it has to be read anew
    bool m_asked = false;     // there was a question since the last capture, and so m_changed is fresh
    qint64 m_filledKey = 0;   // tells the image that the last capture filled, and that nobody has changed it since

    mutable std::mutex m_errorMutex;
    QString m_error;
};

} // namespace kel
