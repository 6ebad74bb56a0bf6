#include "play/PlaybackCanvas.h"

#include "play/ComposedPicture.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QFocusEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace
{

// Dark in either theme, as in a cinema: nothing beside the picture shall compete with it.
constexpr QRgb kSurround = qRgb(24, 25, 28);
constexpr double kFocusOutline = 2;

} // namespace

PlaybackCanvas::PlaybackCanvas(KelPlaybackTrackManager *manager, QWidget *parent)
    : QWidget(parent)
    , m_manager(manager)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Picture of the recording"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(160, 90);
}

void PlaybackCanvas::setEnlarging(bool on)
{
    m_isEnlarging = on;
    update();
}

QImage PlaybackCanvas::picture()
{
    if (m_picture.isNull() || m_revision != m_manager->pictureRevision()) {
        m_revision = m_manager->pictureRevision();
        m_picture = composedPicture(m_manager, std::move(m_picture));
        m_scaled = QImage();
    }
    return m_picture;
}

QRectF PlaybackCanvas::pictureRect() const
{
    const QSizeF natural = m_manager->pictureSize();
    if (natural.isEmpty())
        return QRectF();
    QSizeF shown = natural.scaled(size(), Qt::KeepAspectRatio);
    if (!m_isEnlarging && shown.width() > natural.width())
        shown = natural;
    // On whole pixels of the screen, so that a picture of its own size stays sharp.
    const double ratio = devicePixelRatioF();
    const QSize pixels = (shown * ratio).toSize().expandedTo(QSize(1, 1));
    const QSize room = (QSizeF(size()) * ratio).toSize();
    const QPoint corner((room.width() - pixels.width()) / 2, (room.height() - pixels.height()) / 2);
    return QRectF(QPointF(corner) / ratio, QSizeF(pixels) / ratio);
}

QSize PlaybackCanvas::sizeHint() const
{
    return m_manager->pictureSize().expandedTo(QSize(480, 270));
}

void PlaybackCanvas::refresh()
{
    if (m_revision != m_manager->pictureRevision())
        update();
}

/// The picture in that many pixels.
const QImage &PlaybackCanvas::scaledPicture(const QSize &pixels)
{
    if (pixels == m_picture.size())
        return m_picture;
    if (pixels != m_scaled.size()) {
        // Pixels that become whole squares stay squares.
        const bool isMultiple = pixels.width() % m_picture.width() == 0 && pixels.height() % m_picture.height() == 0;
        m_scaled = m_picture.scaled(pixels, Qt::IgnoreAspectRatio,
                                    isMultiple ? Qt::FastTransformation : Qt::SmoothTransformation);
    }
    return m_scaled;
}

void PlaybackCanvas::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(kSurround));
    const QRectF target = pictureRect();
    if (!picture().isNull() && !target.isEmpty())
        painter.drawImage(target, scaledPicture((target.size() * devicePixelRatioF()).toSize()));
    if (hasFocus() && m_showsFocus) {
        const double inset = kFocusOutline / 2;
        painter.setPen(QPen(palette().color(QPalette::Highlight), kFocusOutline));
        painter.drawRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset));
    }
}

void PlaybackCanvas::focusInEvent(QFocusEvent *event)
{
    m_showsFocus = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    QWidget::focusInEvent(event);
}

void PlaybackCanvas::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit clicked();
    QWidget::mousePressEvent(event);
}

void PlaybackCanvas::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
    QWidget::mouseDoubleClickEvent(event);
}
