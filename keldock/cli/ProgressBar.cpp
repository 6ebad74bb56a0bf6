#include "cli/ProgressBar.h"

#include "cli/Console.h"
#include "cli/Units.h"

#include <algorithm>

namespace
{
constexpr int DrawEveryMs = 100;
constexpr int SmallestBar = 10;
constexpr int WidestBar = 50;
constexpr int EstimateAfterMs = 1000; // before that the estimate jumps about
} // namespace

ProgressBar::ProgressBar(const QString &label)
    : m_label(label)
{
    m_sinceStart.start();
}

void ProgressBar::show(int percent)
{
    m_percent = qBound(0, percent, 100);
    if (!m_line.isShown())
        return;
    if (m_percent < 100 && m_sinceDrawn.isValid() && m_sinceDrawn.elapsed() < DrawEveryMs)
        return;
    m_sinceDrawn.start();
    m_line.show(line(m_percent, Console::width()));
}

void ProgressBar::finish()
{
    if (m_percent == 100)
        m_line.finish();
    else
        m_line.clear();
}

QString ProgressBar::line(int percent, int columns) const
{
    const QString tail = QStringLiteral(" %1 %  %2").arg(percent, 3).arg(timeLeft(percent), -10);
    QString head = m_label + QLatin1Char(' ');
    const int room = columns - 1 - tail.size();
    if (head.size() + SmallestBar > room)
        head.clear();
    const int cells = std::min(WidestBar, room - head.size());
    if (cells < SmallestBar)
        return tail.trimmed();
    const int full = cells * percent / 100;
    const bool unicode = Console::showsUnicode();
    return head + QString(full, unicode ? QChar(0x2588) : QLatin1Char('#')) +
           QString(cells - full, unicode ? QChar(0x2591) : QLatin1Char('.')) + tail;
}

QString ProgressBar::timeLeft(int percent) const
{
    const qint64 elapsedMs = m_sinceStart.elapsed();
    if (percent == 100)
        return Units::clock(elapsedMs);
    if (percent == 0 || elapsedMs < EstimateAfterMs)
        return QString();
    return Units::clock(elapsedMs * (100 - percent) / percent) + QStringLiteral(" left");
}
