#include "screen/portal/CastPicture.h"

#include "screen/OpaqueCopy.h"

#include <QPainter>

#include <cstring>
#include <utility>

namespace kel
{

namespace
{

// A reader that is further behind copies everything.
constexpr std::size_t kMaxChanges = 64;

} // namespace

bool CastPicture::update(const CastFrame &frame)
{
    const std::lock_guard lock(m_mutex);
    const bool hasNewPointer = frame.pointer && updatePointer(*frame.pointer);
    const bool hasNewPicture = !frame.picture.isNull() && updatePicture(frame);
    return hasNewPointer || hasNewPicture;
}

bool CastPicture::updatePointer(const CastFrame::Pointer &pointer)
{
    bool isNew = std::exchange(m_isPointerOnStream, pointer.isOnStream) != pointer.isOnStream;
    if (!pointer.isOnStream)
        return isNew;
    isNew |= std::exchange(m_pointer.position, pointer.position) != pointer.position;
    const bool isNewShape =
        pointer.shape && (*pointer.shape != m_pointer.shape || pointer.hotspot != m_pointer.hotspot);
    if (isNewShape) {
        m_pointer.shape = *pointer.shape;
        m_pointer.hotspot = pointer.hotspot;
        ++m_pointer.shapeNumber;
    }
    return isNew || isNewShape;
}

bool CastPicture::updatePicture(const CastFrame &frame)
{
    QImage picture = frame.picture;
    QRegion damage = frame.damage.value_or(picture.rect());
    if (!frame.toUpright.isIdentity()) {
        picture = picture.transformed(frame.toUpright);
        damage = picture.rect();
    }
    if (picture.format() != QImage::Format_RGB32)
        picture = picture.convertToFormat(QImage::Format_RGB32);

    QRegion changed;
    if (m_picture.size() != picture.size()) {
        m_picture = picture.copy();
        if (m_picture.isNull())
            return false;
        m_firstOfSize = m_number + 1;
        if (m_firstSize.isEmpty())
            m_firstSize = m_picture.size();
        changed = m_picture.rect();
    } else {
        for (const QRect &rect : damage &picture.rect())
            changed += copyChanges(picture, rect);
    }
    if (changed.isEmpty())
        return false;
    ++m_number;
    m_changes.push_back(changed);
    if (m_changes.size() > kMaxChanges)
        m_changes.pop_front();
    return true;
}

/// Copies the lines that differ. To compare them costs no more than to copy them, and most compositors do not tell what
/// has changed, or more than has.
QRegion CastPicture::copyChanges(const QImage &picture, const QRect &rect)
{
    const std::size_t bytes = std::size_t(rect.width()) * sizeof(QRgb);
    const std::size_t offset = std::size_t(rect.x()) * sizeof(QRgb);
    QRegion changed;
    int firstOfRun = -1;
    for (int y = rect.top(); y <= rect.bottom() + 1; ++y) {
        const bool isInside = y <= rect.bottom();
        const uchar *from = isInside ? picture.constScanLine(y) + offset : nullptr;
        uchar *to = isInside ? m_picture.scanLine(y) + offset : nullptr;
        if (isInside && std::memcmp(from, to, bytes) != 0) {
            std::memcpy(to, from, bytes);
            if (firstOfRun < 0)
                firstOfRun = y;
        } else if (firstOfRun >= 0) {
            changed += QRect(rect.x(), firstOfRun, rect.width(), y - firstOfRun);
            firstOfRun = -1;
        }
    }
    return changed;
}

QSize CastPicture::size() const
{
    const std::lock_guard lock(m_mutex);
    return m_picture.size();
}

QSize CastPicture::firstSize() const
{
    const std::lock_guard lock(m_mutex);
    return m_firstSize;
}

QRegion CastPicture::changesSince(quint64 number) const
{
    if (number < m_firstOfSize || m_number - number > m_changes.size())
        return m_picture.rect();
    QRegion changes;
    for (std::size_t i = m_changes.size() - (m_number - number); i < m_changes.size(); ++i)
        changes += m_changes[i];
    return changes;
}

bool CastPicture::hasChanged(const QRect &area, quint64 since) const
{
    const std::lock_guard lock(m_mutex);
    return m_number > 0 && (since < m_firstOfSize || changesSince(since).intersects(area));
}

quint64 CastPicture::copyTo(QImage &image, const QPoint &to, const QRect &area, quint64 since) const
{
    const std::lock_guard lock(m_mutex);
    if (since < m_firstOfSize && !m_picture.rect().contains(area)) {
        QPainter painter(&image);
        painter.fillRect(QRect(to, area.size()), Qt::black);
    }
    for (const QRect &rect : changesSince(since) & area & m_picture.rect()) {
        const QImage pixels(m_picture.constScanLine(rect.y()) + std::size_t(rect.x()) * sizeof(QRgb), rect.width(),
                            rect.height(), m_picture.bytesPerLine(), QImage::Format_RGB32);
        copyOpaque(pixels, to + rect.topLeft() - area.topLeft(), image);
    }
    return m_number;
}

CastPicture::Pointer CastPicture::pointer() const
{
    const std::lock_guard lock(m_mutex);
    return m_isPointerOnStream ? m_pointer : Pointer();
}

} // namespace kel
