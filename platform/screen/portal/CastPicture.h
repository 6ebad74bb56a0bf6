#pragma once

#include "screen/portal/CastFrame.h"

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QRegion>

#include <deque>
#include <mutex>

namespace kel
{

/// The newest picture and pointer of a screen cast. One thread updates it, any number of threads read it.
///
/// Pictures that differ are numbered from 1, so that each reader can tell what has changed since the one that it has
/// read.
class CastPicture
{
public:
    struct Pointer {
        QPoint position; ///< of the hotspot, in pixels of the picture
        QImage shape;    ///< null when there is nothing to see
        QPoint hotspot;
        int shapeNumber = 0; ///< another number, another shape
    };

    /// False when the frame brings nothing new.
    bool update(const CastFrame &frame);

    /// The size of the picture; empty before the first one.
    QSize size() const;

    /// The size of the first picture, which tells by how much the monitor is scaled even after it has changed.
    QSize firstSize() const;

    /// Whether anything in `area` (pixels of the picture) has changed since the picture of that number; 0 for none.
    bool hasChanged(const QRect &area, quint64 since) const;

    /// Copies what has changed in `area` since the picture of that number into `image`
    /// (QImage::Format_ARGB32_Premultiplied), where the area lies at `to` and must fit. What is outside of the picture
    /// is black. Returns the number of the picture that was copied; 0 when there is none yet.
    quint64 copyTo(QImage &image, const QPoint &to, const QRect &area, quint64 since) const;

    Pointer pointer() const;

private:
    bool updatePicture(const CastFrame &frame);
    bool updatePointer(const CastFrame::Pointer &pointer);
    QRegion copyChanges(const QImage &picture, const QRect &rect);
    QRegion changesSince(quint64 number) const;

    mutable std::mutex m_mutex; // guards the members below
    QImage m_picture;           // QImage::Format_RGB32
    QSize m_firstSize;
    quint64 m_number = 0;
    quint64 m_firstOfSize = 0;     // the number of the first picture of this size
    std::deque<QRegion> m_changes; // of the latest pictures, the newest at the end
    Pointer m_pointer;
    bool m_isPointerOnStream = false;
};

} // namespace kel
