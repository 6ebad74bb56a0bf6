#include "playback/tracks/KelPlaybackCountdownTrack.h"

#include "text/ClockText.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

using namespace kel;

namespace
{

constexpr double kPixelsPerFontUnit = 1.33;
constexpr int kBoxPaddingX = 8;
constexpr int kBoxPaddingY = 4;

} // namespace

KelPlaybackCountdownTrack::KelPlaybackCountdownTrack(const QString &directory, KelPlaybackTrackManager *manager)
    : KelPlaybackTrack(directory, manager)
{
    setName(QStringLiteral("CountdownTrack"));
}

void KelPlaybackCountdownTrack::seekToFrame(int frame)
{
    m_currentFrame = frame;
}

bool KelPlaybackCountdownTrack::moveToFrame(int frame)
{
    const QString before = visibleState();
    seekToFrame(frame);
    return visibleState() != before;
}

/// The part of the layer that depends on the frame.
QString KelPlaybackCountdownTrack::visibleState() const
{
    if (!m_isEnabled || m_totalFrames == 0)
        return {};
    if (m_displayMode == ProgressBar)
        return QString::number(playedWidth());
    return m_displayMode == TimeBox && m_fps > 0 ? timeText() : QString();
}

int KelPlaybackCountdownTrack::nextKeyFrame()
{
    return m_currentFrame;
}

bool KelPlaybackCountdownTrack::isVisible()
{
    return m_isEnabled;
}

void KelPlaybackCountdownTrack::setRange(int start, int end)
{
    m_isRangeMode = true;
    m_rangeStart = start;
    m_rangeEnd = end;
}

void KelPlaybackCountdownTrack::setBarColors(const QColor &played, const QColor &background)
{
    m_barColor = played;
    m_barBackground = background;
}

void KelPlaybackCountdownTrack::paint(QPainter *painter)
{
    if (!painter || !m_isEnabled || m_totalFrames == 0)
        return;
    painter->save();
    if (m_displayMode == ProgressBar)
        paintBar(*painter);
    else if (m_displayMode == TimeBox && m_fps > 0)
        paintTimeBox(*painter);
    painter->restore();
}

/// Width of the played part of the bar, in logical pixels.
int KelPlaybackCountdownTrack::playedWidth() const
{
    qint64 frame = m_currentFrame;
    const qint64 step = std::max<qint64>(1, qint64(m_barIntervalMs) * m_fps / 1000);
    if (frame < m_totalFrames - 1)
        frame -= frame % step;
    return int(m_area.width() * std::clamp(double(frame) / m_totalFrames, 0.0, 1.0));
}

void KelPlaybackCountdownTrack::paintBar(QPainter &painter) const
{
    const QRect bar(0, m_area.height() - m_barHeight, m_area.width(), m_barHeight);
    QRect played = bar;
    played.setWidth(playedWidth());

    painter.setPen(Qt::NoPen);
    painter.setRenderHint(QPainter::Antialiasing, m_cornerRadius > 0);
    painter.setBrush(m_barBackground);
    painter.drawRoundedRect(bar, m_cornerRadius, m_cornerRadius);
    if (played.isEmpty())
        return;
    // Clipping gives the played part the bar's left corners and a straight right edge.
    painter.setClipRect(played, Qt::IntersectClip);
    painter.setBrush(m_barColor);
    painter.drawRoundedRect(bar, m_cornerRadius, m_cornerRadius);
}

QString KelPlaybackCountdownTrack::timeText() const
{
    qint64 elapsed = std::max(m_currentFrame, 0);
    qint64 total = m_totalFrames;
    if (m_isRangeMode) {
        elapsed = std::max(std::max(std::min(m_currentFrame, m_rangeEnd), m_rangeStart) - m_rangeStart, 0);
        total = m_rangeEnd - m_rangeStart;
    }
    const double rate = m_fps * m_speed;
    const auto elapsedSeconds = qint64(double(elapsed) / rate);
    const auto totalSeconds = qint64(double(total) / rate);
    return ClockText::hoursMinutesSeconds(elapsedSeconds) + QLatin1Char('/') +
           ClockText::hoursMinutesSeconds(totalSeconds);
}

void KelPlaybackCountdownTrack::paintTimeBox(QPainter &painter) const
{
    QFont font(QStringLiteral("Arial"));
    font.setWeight(QFont::Bold);
    font.setPixelSize(std::max(1, qRound(m_fontSize * kPixelsPerFontUnit * m_scale)));
    const QString text = timeText();
    const QSize textSize = QFontMetrics(font).size(Qt::TextSingleLine, text);

    const int margin = m_isRangeMode ? 15 : 10;
    const QRect box(m_area.width() - margin - textSize.width() - kBoxPaddingX,
                    m_area.height() - margin - textSize.height() - kBoxPaddingY, textSize.width() + 2 * kBoxPaddingX,
                    textSize.height() + 2 * kBoxPaddingY);
    const double defaultRadius = (m_isRangeMode ? 4 : 6) * m_scale;
    const double radius = m_cornerRadius > 0 ? m_cornerRadius : defaultRadius;

    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 128));
    painter.drawRoundedRect(box, radius, radius);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(box, Qt::AlignCenter, text);
}
