#include "FloatingCard.h"

#include "SceneBackdrop.h"
#include "SceneColors.h"

#include <QLinearGradient>

#include <cmath>

namespace
{

constexpr int kRadius = 14;
constexpr int kNominalFps = 30;
constexpr int kProgressCycle = 300;
constexpr int kBars = 24;
const QColor kPaper(0xf6, 0xf8, 0xfd);
const QColor kInk(0x22, 0x2b, 0x45);
const QColor kGroove(0xdf, 0xe5, 0xf2);

/// Oscillates between -1 and 1 with this period.
double drift(int frame, int cycle)
{
    return std::sin(2.0 * M_PI * (frame % cycle) / cycle);
}

} // namespace

FloatingCard::FloatingCard(const QSize &sceneSize, const QSize &size)
    : m_sceneSize(sceneSize)
    , m_size(size)
    , m_shadow(paintShadow(size, kRadius))
{
}

QPoint FloatingCard::position(int frame) const
{
    const double x = 0.66 + 0.11 * drift(frame, 560);
    const double y = 0.21 + 0.13 * drift(frame, 380);
    return QPoint(static_cast<int>(x * m_sceneSize.width()), static_cast<int>(y * m_sceneSize.height()));
}

QRect FloatingCard::extent(int frame) const
{
    const QPoint margin(kShadowMargin, kShadowMargin);
    return QRect(position(frame) - margin, m_shadow.size());
}

void FloatingCard::paint(QPainter &painter, int frame) const
{
    const QRect card(position(frame), m_size);
    painter.drawImage(extent(frame).topLeft(), m_shadow);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kPaper);
    painter.drawRoundedRect(card, kRadius, kRadius);

    const int unit = m_size.height() / 10;
    const QRect inside = card.adjusted(unit * 3 / 2, unit, -unit * 3 / 2, -unit);
    painter.setPen(kInk);
    painter.setFont(SceneColors::windowFont(unit, QFont::DemiBold));
    painter.drawText(inside, Qt::AlignTop | Qt::AlignLeft, "Tonight");

    const int hundredths = frame * 100 / kNominalFps;
    const QString clock = QString("%1:%2.%3")
                              .arg(hundredths / 6000, 2, 10, QChar('0'))
                              .arg(hundredths / 100 % 60, 2, 10, QChar('0'))
                              .arg(hundredths % 100, 2, 10, QChar('0'));
    painter.setFont(SceneColors::codeFont(unit));
    painter.drawText(inside, Qt::AlignTop | Qt::AlignRight, clock);

    paintChart(painter, inside.adjusted(0, unit * 2, 0, -unit * 3), frame);
    paintProgress(painter, QRect(inside.x(), inside.bottom() - unit * 2, inside.width(), unit * 2), frame);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void FloatingCard::paintChart(QPainter &painter, const QRect &area, int frame) const
{
    painter.setPen(Qt::NoPen);
    const double step = static_cast<double>(area.width()) / kBars;
    for (int i = 0; i < kBars; ++i) {
        const double level = 0.5 + 0.32 * drift(frame + i * 17, 170) + 0.14 * drift(frame * 2 + i * 41, 230);
        const double height = qBound(0.06, level, 1.0) * area.height();
        const double share = static_cast<double>(i) / (kBars - 1);
        painter.setBrush(QColor::fromHsvF(0.60 + 0.16 * share, 0.55, 0.95));
        painter.drawRoundedRect(QRectF(area.x() + i * step, area.bottom() - height, step * 0.64, height), 2, 2);
    }
}

void FloatingCard::paintProgress(QPainter &painter, const QRect &area, int frame) const
{
    const double share = static_cast<double>(frame % kProgressCycle) / kProgressCycle;
    const int thickness = qMax(4, area.height() / 3);
    const int textWidth = area.height() * 2;
    const QRectF groove(area.x(), area.center().y() - thickness / 2.0, area.width() - textWidth, thickness);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kGroove);
    painter.drawRoundedRect(groove, thickness / 2.0, thickness / 2.0);
    QLinearGradient gradient(groove.topLeft(), groove.topRight());
    gradient.setColorAt(0.0, SceneColors::kAccent);
    gradient.setColorAt(1.0, SceneColors::kAccentEnd);
    painter.setBrush(gradient);
    painter.drawRoundedRect(
        QRectF(groove.x(), groove.y(), qMax<double>(thickness, groove.width() * share), groove.height()),
        thickness / 2.0, thickness / 2.0);
    painter.setPen(kInk);
    painter.setFont(SceneColors::windowFont(area.height() / 2));
    painter.drawText(area, Qt::AlignVCenter | Qt::AlignRight, QString("%1 %").arg(static_cast<int>(share * 100)));
}
