#include "playback/tracks/KelPlaybackCountdownTrack.h"

#include "text/ClockText.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

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
    return int(m_area.width() * std::clamp(playedShare(), 0.0, 1.0));
}

double KelPlaybackCountdownTrack::playedShare() const
{
    const bool isEnd = m_currentFrame >= m_totalFrames - 1;
    if (rules().timeFollowsRecording) {
        const double ms = timeline().msOf(m_currentFrame);
        const double step = std::max(m_barIntervalMs, 1);
        return isEnd ? 1.0 : (ms - std::fmod(ms, step)) / double(timeline().durationMs());
    }
    qint64 frame = m_currentFrame;
    const qint64 step = std::max<qint64>(1, qint64(m_barIntervalMs) * m_fps / 1000);
    if (!isEnd)
        frame -= frame % step;
    return double(frame) / m_totalFrames;
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

/// At the playback speed.
double KelPlaybackCountdownTrack::elapsedSeconds() const
{
    if (rules().timeFollowsRecording) {
        const RecordingTimeline::Range range = m_range.value_or(timeline().whole());
        const double ms = m_currentFrame >= range.lastFrame ? range.endMs : timeline().msOf(m_currentFrame);
        return std::max(ms - range.startMs, 0.0) / 1000.0 / m_speed;
    }
    int elapsed = std::max(m_currentFrame, 0);
    if (m_range)
        elapsed = std::max(
            std::max(std::min(m_currentFrame, m_range->lastFrame), m_range->firstFrame) - m_range->firstFrame, 0);
    return double(elapsed) / (m_fps * m_speed);
}

double KelPlaybackCountdownTrack::totalSeconds() const
{
    if (rules().timeFollowsRecording) {
        const RecordingTimeline::Range range = m_range.value_or(timeline().whole());
        return (range.endMs - range.startMs) / 1000.0 / m_speed;
    }
    const int total = m_range ? m_range->lastFrame - m_range->firstFrame : m_totalFrames;
    return double(total) / (m_fps * m_speed);
}

QString KelPlaybackCountdownTrack::timeText() const
{
    return ClockText::hoursMinutesSeconds(qint64(elapsedSeconds())) + QLatin1Char('/') +
           ClockText::hoursMinutesSeconds(qint64(totalSeconds()));
}

void KelPlaybackCountdownTrack::paintTimeBox(QPainter &painter) const
{
    QFont font(QStringLiteral("Arial"));
    font.setWeight(QFont::Bold);
    font.setPixelSize(std::max(1, qRound(m_fontSize * kPixelsPerFontUnit * m_scale)));
    const QString text = timeText();
    const QSize textSize = QFontMetrics(font).size(Qt::TextSingleLine, text);

    const int margin = m_range ? 15 : 10;
    const QRect box(m_area.width() - margin - textSize.width() - kBoxPaddingX,
                    m_area.height() - margin - textSize.height() - kBoxPaddingY, textSize.width() + 2 * kBoxPaddingX,
                    textSize.height() + 2 * kBoxPaddingY);
    const double defaultRadius = (m_range ? 4 : 6) * m_scale;
    const double radius = m_cornerRadius > 0 ? m_cornerRadius : defaultRadius;

    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 128));
    painter.drawRoundedRect(box, radius, radius);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(box, Qt::AlignCenter, text);
}
