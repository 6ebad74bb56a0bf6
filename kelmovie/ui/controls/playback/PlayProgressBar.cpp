#include "ui/controls/playback/PlayProgressBar.h"

#include "ui/controls/playback/ProgressBarAccessible.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

using namespace kel;

namespace
{

enum DragMode { NoDrag = 0, DragPosition = 1, DragStart = 2, DragEnd = 3 };

constexpr QRgb kWholeColor = qRgb(208, 208, 208);
constexpr QRgb kRangeColor = qRgb(189, 189, 189);
constexpr double kRadius = 4;
constexpr double kOutline = 2;
constexpr double kFocusOutline = 1.5;

constexpr int kFineStepMs = 100;
constexpr int kStepMs = 1000;
constexpr int kPageMs = 10000;

// Unlike std::clamp, well defined for a reversed range, which a host may set.
double clamped(double value, double low, double high)
{
    return std::max(std::min(value, high), low);
}

} // namespace

class Q_DECL_HIDDEN PlayProgressBar::Private
{
public:
    Private(PlayProgressBar *bar, bool editable)
        : q(bar)
        , rangeEditable(editable)
    {
    }

    QRectF wholeBar() const
    {
        const double h = q->height();
        return QRectF(h * 0.5, h * 0.25, q->width() - h, h * 0.5);
    }

    double xAt(double ms) const
    {
        const QRectF whole = wholeBar();
        return whole.left() + (duration > 0 ? whole.width() * ms / duration : 0);
    }

    double timeAt(double x) const
    {
        const QRectF whole = wholeBar();
        return whole.width() > 0 ? (x - whole.left()) * duration / whole.width() : 0;
    }

    QRectF barUpTo(double right) const
    {
        QRectF bar = wholeBar();
        bar.setLeft(xAt(rangeStart));
        bar.setRight(right);
        return bar;
    }

    QRectF rangeBar() const { return barUpTo(xAt(rangeEnd)); }
    QRectF handleAt(double x) const { return QRectF(x - q->height() * 0.125, 0, q->height() * 0.25, q->height()); }
    QRectF startHandle() const { return handleAt(xAt(rangeStart)); }
    QRectF endHandle() const { return handleAt(xAt(rangeEnd)); }

    double displayedTime() const { return dragMode == DragPosition && dragTime >= 0 ? dragTime : playTime; }
    double inRange(double ms) const { return clamped(ms, rangeStart, rangeEnd); }

    void dragPositionTo(double x)
    {
        dragTime = inRange(timeAt(x));
        pendingPlayTime = -1;
    }

    void dragHandleTo(double x)
    {
        const int type = dragMode == DragStart ? 0 : 1;
        (dragMode == DragStart ? rangeStart : rangeEnd) = clamped(timeAt(x), 0, duration);
        if (rangeStart > rangeEnd) {
            std::swap(rangeStart, rangeEnd);
            dragMode = dragMode == DragStart ? DragEnd : DragStart;
        }
        playTime = inRange(playTime);
        emit q->sigPlayRangeChanged(int(rangeStart), int(rangeEnd), type);
    }

    void trimToPosition(int type)
    {
        if (!rangeEditable)
            return;
        emit q->sigRangeAdjustStart(type);
        // Playback may report a position outside of the range.
        const double position = std::clamp(playTime, 0.0, duration);
        rangeStart = type == 0 ? position : std::min(rangeStart, position);
        rangeEnd = type == 1 ? position : std::max(rangeEnd, position);
        emit q->sigPlayRangeChanged(int(rangeStart), int(rangeEnd), type);
        emit q->sigRangeAdjustEnd(type);
    }

    PlayProgressBar *const q;
    int dragMode = NoDrag;
    const bool rangeEditable;
    int barHeight = 20;
    QColor playedColor = Qt::red;
    double duration = 0;
    double playTime = 0;
    double rangeStart = 0;
    double rangeEnd = 0;
    bool hovered = false;
    int pendingPlayTime = -1;
    double dragTime = -1.0;
};

PlayProgressBar::PlayProgressBar(bool rangeEditable, QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<Private>(this, rangeEditable))
{
    QAccessible::installFactory(progressBarAccessible); // ignores repeated installation
    setObjectName(QStringLiteral("PlayProgressBar"));
    setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::Fixed);
    setMouseTracking(true);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(tr("Playback position"));
    setToolTip(rangeEditable
                   ? tr("Drag to seek; drag the ends to trim. Keys: arrows seek, I and O set the start and end")
                   : tr("Drag to seek, or use the arrow keys"));
}

PlayProgressBar::~PlayProgressBar() = default;

void PlayProgressBar::setDuration(int ms)
{
    if (ms == d->duration)
        return;
    d->duration = ms;
    d->rangeStart = 0;
    d->playTime = 0;
    d->rangeEnd = ms;
    update();
}

void PlayProgressBar::setPlayRange(int start, int end)
{
    d->rangeStart = start;
    d->rangeEnd = end;
    d->playTime = d->inRange(d->playTime);
    update();
}

void PlayProgressBar::setPlayTime(int ms)
{
    if (d->dragMode == DragPosition) {
        d->pendingPlayTime = ms;
        return;
    }
    d->playTime = ms;
    update();
}

void PlayProgressBar::setBarHeight(int height)
{
    d->barHeight = height;
    setFixedHeight(int(std::ceil(height * 1.5)));
    update();
}

int PlayProgressBar::barHeight() const
{
    return d->barHeight;
}

void PlayProgressBar::setPlayedColor(const QColor &color)
{
    d->playedColor = color;
    update();
}

QColor PlayProgressBar::playedColor() const
{
    return d->playedColor;
}

bool PlayProgressBar::isDragging() const
{
    return d->dragMode != NoDrag;
}

int PlayProgressBar::playTimeMs() const
{
    return int(d->playTime);
}

int PlayProgressBar::rangeStartMs() const
{
    return int(d->rangeStart);
}

int PlayProgressBar::rangeEndMs() const
{
    return int(d->rangeEnd);
}

void PlayProgressBar::seekTo(int ms)
{
    emit sigPlayTimePress();
    d->playTime = d->inRange(ms);
    emit sigPlayTimeChanged(int(d->playTime));
    emit sigPlayTimeRelease();
    update();
}

QSize PlayProgressBar::sizeHint() const
{
    return {QWidget::sizeHint().width(), d->barHeight};
}

void PlayProgressBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF whole = d->wholeBar();
    painter.setBrush(QColor(kWholeColor));
    painter.drawRoundedRect(whole, kRadius, kRadius);
    painter.setBrush(QColor(kRangeColor));
    painter.drawRoundedRect(d->rangeBar(), kRadius, kRadius);

    const QRectF played = d->barUpTo(d->xAt(d->displayedTime()));
    const QPen outline(Qt::white, kOutline);
    if (played.width() >= 0) {
        painter.setBrush(d->playedColor.lighter(120));
        painter.drawRoundedRect(played, kRadius, kRadius);
        if (d->hovered || hasFocus()) {
            const double size = height() * 0.5;
            painter.setPen(outline);
            painter.setBrush(d->playedColor);
            painter.drawEllipse(QRectF(played.right() - size / 2, played.center().y() - size / 2, size, size));
            painter.setPen(Qt::NoPen);
        }
    }
    if (d->rangeEditable) {
        painter.setBrush(d->playedColor);
        painter.setPen(d->hovered ? outline : QPen(Qt::NoPen));
        painter.drawRoundedRect(d->startHandle(), kRadius, kRadius);
        painter.drawRoundedRect(d->endHandle(), kRadius, kRadius);
    }
    if (hasFocus()) {
        const double inset = kFocusOutline / 2;
        painter.setPen(QPen(d->playedColor, kFocusOutline));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), kRadius, kRadius);
    }
}

void PlayProgressBar::enterEvent(QEvent *)
{
    d->hovered = true;
    update();
}

void PlayProgressBar::leaveEvent(QEvent *)
{
    d->hovered = false;
    update();
}

void PlayProgressBar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const QPointF place = event->localPos();
    if (d->rangeEditable && d->startHandle().contains(place)) {
        d->dragMode = DragStart;
        emit sigRangeAdjustStart(0);
    } else if (d->rangeEditable && d->endHandle().contains(place)) {
        d->dragMode = DragEnd;
        emit sigRangeAdjustStart(1);
    } else if (d->rangeBar().contains(place)) {
        d->dragMode = DragPosition;
        d->dragPositionTo(place.x());
        emit sigPlayTimePress();
        emit sigPlayTimeChanged(int(d->dragTime));
    } else {
        d->dragMode = NoDrag;
    }
    update();
}

void PlayProgressBar::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF place = event->localPos();
    switch (d->dragMode) {
    case NoDrag: {
        const bool onHandle = d->startHandle().contains(place) || d->endHandle().contains(place);
        setCursor(onHandle ? Qt::SizeHorCursor : Qt::ArrowCursor);
        return;
    }
    case DragPosition:
        d->dragPositionTo(place.x());
        emit sigPlayTimeChanged(int(d->dragTime));
        break;
    default:
        d->dragHandleTo(place.x());
    }
    update();
}

void PlayProgressBar::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    switch (d->dragMode) {
    case NoDrag:
        break;
    case DragPosition:
        if (d->dragTime >= 0)
            d->playTime = d->dragTime;
        emit sigPlayTimeRelease();
        break;
    default:
        emit sigRangeAdjustEnd(d->dragMode == DragStart ? 0 : 1);
    }
    d->dragMode = NoDrag;
    d->dragTime = -1.0;
    // A position that playback reported during the drag takes precedence over the dragged one.
    if (d->pendingPlayTime >= 0) {
        d->playTime = d->pendingPlayTime;
        d->pendingPlayTime = -1;
    }
    update();
}

void PlayProgressBar::keyPressEvent(QKeyEvent *event)
{
    if (isDragging()) {
        QWidget::keyPressEvent(event);
        return;
    }
    const int step = event->modifiers() & Qt::ControlModifier ? kFineStepMs : kStepMs;
    switch (event->key()) {
    case Qt::Key_Left:
        seekTo(int(d->playTime - step));
        break;
    case Qt::Key_Right:
        seekTo(int(d->playTime + step));
        break;
    case Qt::Key_PageUp:
        seekTo(int(d->playTime - kPageMs));
        break;
    case Qt::Key_PageDown:
        seekTo(int(d->playTime + kPageMs));
        break;
    case Qt::Key_Home:
        seekTo(int(d->rangeStart));
        break;
    case Qt::Key_End:
        seekTo(int(d->rangeEnd));
        break;
    case Qt::Key_I:
        d->trimToPosition(0);
        break;
    case Qt::Key_O:
        d->trimToPosition(1);
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    update();
}
