#include "notification/KelToastsMessage.h"

#include <QApplication>
#include <QCursor>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QScreen>

#include <algorithm>

namespace
{

constexpr int kPadding = 14;
constexpr int kIconSize = 20;
constexpr int kCloseSize = 10;
constexpr int kGap = 10;
constexpr int kMaxTextWidth = 420;
constexpr int kTopMargin = 48;
constexpr int kFadeMs = 180;
constexpr double kRadius = 8;

QColor accentOf(KelToastsMessage::Type type)
{
    switch (type) {
    case KelToastsMessage::Success:
        return QColor(0x3c, 0xb3, 0x71);
    case KelToastsMessage::Warning:
        return QColor(0xe8, 0xa3, 0x3d);
    case KelToastsMessage::Error:
        return QColor(0xe0, 0x52, 0x52);
    case KelToastsMessage::Information:
        break;
    }
    return QColor(0x33, 0x88, 0xff);
}

QPainterPath symbolOf(KelToastsMessage::Type type)
{
    QPainterPath path; // in a square of 20 x 20
    switch (type) {
    case KelToastsMessage::Success:
        path.moveTo(5.5, 10.5);
        path.lineTo(8.7, 13.6);
        path.lineTo(14.5, 7);
        break;
    case KelToastsMessage::Error:
        path.moveTo(6.8, 6.8);
        path.lineTo(13.2, 13.2);
        path.moveTo(13.2, 6.8);
        path.lineTo(6.8, 13.2);
        break;
    case KelToastsMessage::Warning:
        path.moveTo(10, 5.4);
        path.lineTo(10, 11);
        path.moveTo(10, 14.3);
        path.lineTo(10, 14.4);
        break;
    case KelToastsMessage::Information:
        path.moveTo(10, 5.6);
        path.lineTo(10, 5.7);
        path.moveTo(10, 9);
        path.lineTo(10, 14.6);
        break;
    }
    return path;
}

QPointer<KelToastsMessage> shownToast;
QRect avoidedArea; // in logical pixels of the desktop

/// A place at the top or bottom of a screen, outside of the avoided area; without such a place, the top of the first
/// screen. The screen of the mouse pointer comes first.
QPoint placeOnDesktop(const QSize &size)
{
    QList<QScreen *> screens = QGuiApplication::screens();
    if (QScreen *const screen = QGuiApplication::screenAt(QCursor::pos()))
        screens.prepend(screen);
    QRect first;
    for (const QScreen *screen : qAsConst(screens)) {
        const QRect available = screen->availableGeometry();
        QRect place(QPoint(), size);
        place.moveCenter(available.center());
        for (const int top : {available.top() + kTopMargin, available.bottom() + 1 - kTopMargin - size.height()}) {
            place.moveTop(top);
            if (!place.intersects(avoidedArea))
                return place.topLeft();
            if (first.isNull())
                first = place;
        }
    }
    return first.topLeft();
}

} // namespace

void KelToastsMessage::showMessage(QWidget *parent, int type, const QString &text, int durationMs, bool fades,
                                   bool hasCloseButton)
{
    delete shownToast;
    const Type known = type >= Information && type <= Error ? Type(type) : Information;
    shownToast = new KelToastsMessage(known, text, hasCloseButton);
    shownToast->place(parent);
    shownToast->appear(durationMs, fades);
}

void KelToastsMessage::avoid(const QRect &area)
{
    avoidedArea = area;
    if (shownToast && shownToast->geometry().intersects(area))
        delete shownToast;
}

// Not a child of the anchor: the toast may outlast a dialog that closes right after showing it.
KelToastsMessage::KelToastsMessage(Type type, const QString &text, bool hasCloseButton)
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus)
    , m_type(type)
    , m_text(text)
    , m_hasCloseButton(hasCloseButton)
    , m_fade(this, "windowOpacity")
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAccessibleName(text);
    setCursor(Qt::PointingHandCursor);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] { fadeTo(0); });
    connect(&m_fade, &QPropertyAnimation::finished, this, [this] {
        if (qFuzzyIsNull(m_fade.endValue().toDouble()))
            close();
    });
}

void KelToastsMessage::appear(int durationMs, bool fades)
{
    setWindowOpacity(0);
    show();
    fadeTo(1);
    m_timer.setInterval(std::max(0, durationMs));
    m_fades = fades;
    if (fades)
        m_timer.start();
}

void KelToastsMessage::fadeTo(double opacity)
{
    m_fade.stop();
    m_fade.setDuration(kFadeMs);
    m_fade.setStartValue(windowOpacity());
    m_fade.setEndValue(opacity);
    m_fade.start();
}

void KelToastsMessage::place(const QWidget *anchor)
{
    const QScreen *screen = anchor ? anchor->screen() : QGuiApplication::screenAt(QCursor::pos());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect available = screen->availableGeometry();

    const int closeWidth = m_hasCloseButton ? kGap + kCloseSize : 0;
    const int extraWidth = 2 * kPadding + kIconSize + kGap + closeWidth;
    const int textWidth = std::max(1, std::min(kMaxTextWidth, available.width() - extraWidth));
    const QSize textSize =
        fontMetrics().boundingRect(QRect(0, 0, textWidth, available.height()), Qt::TextWordWrap, m_text).size();
    resize(textSize.width() + extraWidth, std::max(textSize.height(), kIconSize) + 2 * kPadding);
    if (!anchor)
        return move(placeOnDesktop(size()));

    const QRect over = anchor->window()->geometry();
    QRect place = rect();
    place.moveCenter(over.center());
    place.moveTop(over.top() + kTopMargin);
    place.moveRight(std::min(place.right(), available.right()));
    place.moveLeft(std::max(place.left(), available.left()));
    place.moveBottom(std::min(place.bottom(), available.bottom()));
    place.moveTop(std::max(place.top(), available.top()));
    move(place.topLeft());
}

QRect KelToastsMessage::iconRect() const
{
    return QRect(kPadding, (height() - kIconSize) / 2, kIconSize, kIconSize);
}

QRect KelToastsMessage::closeRect() const
{
    return QRect(width() - kPadding - kCloseSize, (height() - kCloseSize) / 2, kCloseSize, kCloseSize);
}

QRect KelToastsMessage::textRect() const
{
    const int right = m_hasCloseButton ? closeRect().left() - kGap : width() - kPadding;
    const int left = iconRect().right() + 1 + kGap;
    return QRect(left, 0, right - left, height());
}

void KelToastsMessage::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor(255, 255, 255, 40));
    painter.setBrush(QColor(0x2a, 0x2d, 0x33, 240));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);

    painter.setPen(Qt::NoPen);
    painter.setBrush(accentOf(m_type));
    painter.drawEllipse(iconRect());
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(symbolOf(m_type).translated(iconRect().topLeft()));

    if (m_hasCloseButton) {
        painter.setPen(QPen(QColor(255, 255, 255, 160), 1.5, Qt::SolidLine, Qt::RoundCap));
        const QRectF cross = closeRect();
        painter.drawLine(cross.topLeft(), cross.bottomRight());
        painter.drawLine(cross.topRight(), cross.bottomLeft());
    }
    painter.setPen(Qt::white);
    painter.drawText(textRect(), Qt::AlignVCenter | Qt::TextWordWrap, m_text);
}

void KelToastsMessage::enterEvent(QEvent *)
{
    m_timer.stop();
}

void KelToastsMessage::leaveEvent(QEvent *)
{
    if (m_fades)
        m_timer.start();
}

void KelToastsMessage::mousePressEvent(QMouseEvent *event)
{
    event->accept();
    fadeTo(0);
}
