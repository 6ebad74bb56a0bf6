#include "recorder/CountdownOverlay.h"

#include "widget/ScaleFactor.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace
{

constexpr int kWidth = 320;
constexpr int kHeight = 220;
constexpr int kRadius = 20;

} // namespace

CountdownOverlay::CountdownOverlay(QWidget *parent)
    : QWidget(parent, Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::Dialog)
{
    setWindowTitle(tr("Recording starts soon"));
    setAttribute(Qt::WA_QuitOnClose, false);
    setFocusPolicy(Qt::StrongFocus);
}

void CountdownOverlay::showSeconds(int secondsLeft, const QRect &area, const QString &hint)
{
    m_secondsLeft = secondsLeft;
    m_hint = hint;
    if (secondsLeft <= 0) {
        hide();
        return;
    }
    setAccessibleName(tr("Recording starts in %n second(s)", nullptr, secondsLeft));
    const int lineWidth = fontMetrics().size(0, hint).width() + int(40 * scaleFactor(this));
    const QSize size(std::max(int(kWidth * scaleFactor(this)), lineWidth), int(kHeight * scaleFactor(this)));
    setGeometry(QRect(area.center() - QPoint(size.width() / 2, size.height() / 2), size));
    QPainterPath shape;
    shape.addRoundedRect(rect(), kRadius * scaleFactor(this), kRadius * scaleFactor(this));
    setMask(QRegion(shape.toFillPolygon().toPolygon()));
    if (!isVisible()) {
        show();
        activateWindow();
        setFocus();
    }
    update();
}

void CountdownOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(20, 22, 26));
    const int textHeight = fontMetrics().lineSpacing();
    const int lines = m_hint.count(QLatin1Char('\n')) + 1;
    const QRect below = rect().adjusted(0, height() - lines * textHeight - int(24 * scaleFactor(this)), 0,
                                        -int(16 * scaleFactor(this)));
    painter.setPen(QColor(200, 203, 210));
    painter.drawText(below, Qt::AlignCenter, m_hint);
    QFont large = font();
    large.setPixelSize(int(110 * scaleFactor(this)));
    large.setBold(true);
    painter.setFont(large);
    painter.setPen(Qt::white);
    painter.drawText(rect().adjusted(0, int(8 * scaleFactor(this)), 0, -below.height()), Qt::AlignCenter,
                     QString::number(m_secondsLeft));
}

void CountdownOverlay::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        emit cancelled();
    else
        QWidget::keyPressEvent(event);
}

void CountdownOverlay::mousePressEvent(QMouseEvent *)
{
    emit cancelled();
}
