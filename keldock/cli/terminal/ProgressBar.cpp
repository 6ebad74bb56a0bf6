#include "cli/terminal/ProgressBar.h"

#include "cli/terminal/Console.h"
#include "common/Units.h"

#include <algorithm>

namespace
{
constexpr int kRedrawIntervalMs = 100;
constexpr int kMinBarWidth = 10;
constexpr int kMaxBarWidth = 50;
constexpr int kNoteWidth = 24; // fixed, so that the length of the bar does not depend on the note
} // namespace

ProgressBar::ProgressBar(const QString &label)
    : m_label(label)
{
    m_sinceStart.start();
}

void ProgressBar::show(int percent)
{
    m_percent = qBound(0, percent, 100);
    draw();
}

void ProgressBar::showNote(const QString &note)
{
    m_note = note;
    draw();
}

void ProgressBar::draw()
{
    if (!m_line.isShown())
        return;
    if (m_percent < 100 && m_sinceDrawn.isValid() && m_sinceDrawn.elapsed() < kRedrawIntervalMs)
        return;
    m_sinceDrawn.start();
    m_line.show(line(Console::width()));
}

void ProgressBar::finish()
{
    if (m_percent == 100)
        m_line.finish();
    else
        m_line.clear();
}

QString ProgressBar::line(int columns) const
{
    const QString note = m_percent == 100 ? Units::clock(m_sinceStart.elapsed()) : m_note;
    const QString tail = QStringLiteral(" %1 %  %2").arg(m_percent, 3).arg(note, -kNoteWidth);
    QString head = m_label + QLatin1Char(' ');
    const int available = columns - 1 - tail.size();
    if (head.size() + kMinBarWidth > available)
        head.clear();
    const int cells = std::min(kMaxBarWidth, available - head.size());
    if (cells < kMinBarWidth)
        return tail.trimmed();
    const int full = cells * m_percent / 100;
    const bool isUnicode = Console::showsUnicode();
    return head + QString(full, isUnicode ? QChar(0x2588) : QLatin1Char('#')) +
           QString(cells - full, isUnicode ? QChar(0x2591) : QLatin1Char('.')) + tail;
}
