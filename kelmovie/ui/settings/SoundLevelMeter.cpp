#include "ui/settings/SoundLevelMeter.h"

#include "widget/ScaleFactor.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace kel
{

namespace
{

constexpr int kWidth = 120;
constexpr int kHeight = 8;
constexpr double kLoudDb = -12;
constexpr double kClippingDb = -3;
constexpr double kDecayDbPerMs = 0.03;
constexpr qint64 kHoldMs = 1500;

} // namespace

SoundLevelMeter::SoundLevelMeter(QWidget *parent)
    : QProgressBar(parent)
{
    setRange(kLowestDb, 0);
    setValue(kLowestDb);
    setTextVisible(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize SoundLevelMeter::sizeHint() const
{
    return {qRound(kWidth * scaleFactor(this)), qRound(kHeight * scaleFactor(this))};
}

QSize SoundLevelMeter::minimumSizeHint() const
{
    return {sizeHint().width() / 3, sizeHint().height()};
}

void SoundLevelMeter::setPeak(float peak, qint64 nowMs)
{
    const double db = std::clamp(20 * std::log10(std::max(double(peak), 1e-6)), double(kLowestDb), 0.0);
    m_db = std::max(db, std::max(m_db - double(nowMs - m_updatedAtMs) * kDecayDbPerMs, double(kLowestDb)));
    m_updatedAtMs = nowMs;
    if (m_db >= m_heldDb || nowMs - m_heldAtMs > kHoldMs) {
        m_heldDb = m_db;
        m_heldAtMs = nowMs;
    }
    setValue(qRound(m_db));
    update();
}

void SoundLevelMeter::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF bar = rect();
    const auto xOf = [&](double db) { return bar.width() * (1 - db / kLowestDb); };
    QPainterPath shape;
    shape.addRoundedRect(bar, bar.height() / 2, bar.height() / 2);
    painter.setOpacity(isEnabled() ? 1 : 0.5);
    painter.setClipPath(shape);
    painter.fillRect(bar, palette().color(QPalette::Mid));

    const QColor colors[] = {QColor(0x2f, 0xb3, 0x5f), QColor(0xf2, 0xa9, 0x1c), QColor(0xe1, 0x3d, 0x30)};
    const double limits[] = {kLowestDb, kLoudDb, kClippingDb, 0};
    for (int i = 0; i < 3; ++i) {
        const double right = std::min(m_db, limits[i + 1]);
        if (right > limits[i])
            painter.fillRect(QRectF(QPointF(xOf(limits[i]), 0), QPointF(xOf(right), bar.height())), colors[i]);
    }
    if (m_heldDb > kLowestDb) {
        const double width = 2 * scaleFactor(this);
        painter.fillRect(QRectF(xOf(m_heldDb) - width, 0, width, bar.height()), palette().color(QPalette::WindowText));
    }
}

} // namespace kel
