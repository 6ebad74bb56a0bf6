#pragma once

#include "screen/KelScreenStreamer.h"
#include "screen/portal/ScreenCast.h"

#include <QImage>
#include <QRect>
#include <QSize>

#include <memory>
#include <vector>

namespace kel
{

/// Reads a rectangle of the desktop from a screen cast.
///
/// When the caller passes the image of the previous capture, only the changes since then are copied. The rectangle
/// keeps its position and size when a monitor changes its resolution.
class PortalScreenStreamer final : public KelScreenStreamer
{
public:
    /// `area` is in logical pixels of the desktop; frames have `frameSize`.
    PortalScreenStreamer(std::shared_ptr<ScreenCast> cast, const QRect &area, const QSize &frameSize);

    bool hasFrameChanged() override;
    bool captureTo(QImage &image) override;
    QString errorString() const override;
    bool isStalled() const override;

private:
    /// What one monitor contributes.
    struct Part {
        const CastStream *stream = nullptr;
        QRect source;       // in pixels of its picture
        QRect target;       // in pixels of the frame
        quint64 number = 0; // of the picture in the frame
        QImage unscaled;    // of a monitor whose pixels are not those of the frame
    };

    Part partOf(const ScreenCast::Monitor &monitor, const QRect &area, const QSize &frameSize) const;
    bool prepare(QImage &image);
    void copy(Part &part, QImage &image);

    const std::shared_ptr<ScreenCast> m_cast;
    const QSize m_frameSize;
    std::vector<Part> m_parts;
    qint64 m_filledKey = -1; // identifies the image of the last capture in its unmodified state
};

} // namespace kel
