#include "play/PlaybackCanvas.h"

#include "common/ComposedFrame.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QFocusEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace
{

// Dark in both themes, so that nothing distracts from the recording.
constexpr QRgb kSurround = qRgb(24, 25, 28);
constexpr double kFocusOutline = 2;

} // namespace

PlaybackCanvas::PlaybackCanvas(KelPlaybackTrackManager *manager, QWidget *parent)
    : QWidget(parent)
    , m_manager(manager)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Recording"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(160, 90);
}

void PlaybackCanvas::setEnlarging(bool on)
{
    m_isEnlarging = on;
    update();
}

QImage PlaybackCanvas::frame()
{
    if (m_frame.isNull() || m_revision != m_manager->frameRevision()) {
        m_revision = m_manager->frameRevision();
        m_frame = composedFrame(m_manager, std::move(m_frame));
        m_scaled = QImage();
    }
    return m_frame;
}

QRectF PlaybackCanvas::frameRect() const
{
    const QSizeF natural = m_manager->frameSize();
    if (natural.isEmpty())
        return QRectF();
    QSizeF shown = natural.scaled(size(), Qt::KeepAspectRatio);
    if (!m_isEnlarging && shown.width() > natural.width())
        shown = natural;
    // Aligned to physical pixels, so that a frame in its original size stays sharp.
    const double ratio = devicePixelRatioF();
    const QSize pixels = (shown * ratio).toSize().expandedTo(QSize(1, 1));
    const QSize available = (QSizeF(size()) * ratio).toSize();
    const QPoint corner((available.width() - pixels.width()) / 2, (available.height() - pixels.height()) / 2);
    return QRectF(QPointF(corner) / ratio, QSizeF(pixels) / ratio);
}

QSize PlaybackCanvas::sizeHint() const
{
    return m_manager->frameSize().expandedTo(QSize(480, 270));
}

void PlaybackCanvas::refresh()
{
    if (m_revision != m_manager->frameRevision())
        update();
}

/// `pixels` is the size in physical pixels.
const QImage &PlaybackCanvas::scaledFrame(const QSize &pixels)
{
    if (pixels == m_frame.size())
        return m_frame;
    if (pixels != m_scaled.size()) {
        // Integer factors keep the edges of pixels sharp.
        const bool isMultiple = pixels.width() % m_frame.width() == 0 && pixels.height() % m_frame.height() == 0;
        m_scaled = m_frame.scaled(pixels, Qt::IgnoreAspectRatio,
                                  isMultiple ? Qt::FastTransformation : Qt::SmoothTransformation);
    }
    return m_scaled;
}

void PlaybackCanvas::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(kSurround));
    const QRectF target = frameRect();
    if (!frame().isNull() && !target.isEmpty())
        painter.drawImage(target, scaledFrame((target.size() * devicePixelRatioF()).toSize()));
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
