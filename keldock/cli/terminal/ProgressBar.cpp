#include "cli/terminal/ProgressBar.h"

#include "cli/terminal/Console.h"
#include "common/Units.h"

#include <algorithm>

namespace
{
constexpr int DrawEveryMs = 100;
constexpr int SmallestBar = 10;
constexpr int WidestBar = 50;
constexpr int NoteWidth = 24; // a bar that changes its length with the note would look as if it fell
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
    if (m_percent < 100 && m_sinceDrawn.isValid() && m_sinceDrawn.elapsed() < DrawEveryMs)
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
    const QString tail = QStringLiteral(" %1 %  %2").arg(m_percent, 3).arg(note, -NoteWidth);
    QString head = m_label + QLatin1Char(' ');
    const int room = columns - 1 - tail.size();
    if (head.size() + SmallestBar > room)
        head.clear();
    const int cells = std::min(WidestBar, room - head.size());
    if (cells < SmallestBar)
        return tail.trimmed();
    const int full = cells * m_percent / 100;
    const bool unicode = Console::showsUnicode();
    return head + QString(full, unicode ? QChar(0x2588) : QLatin1Char('#')) +
           QString(cells - full, unicode ? QChar(0x2591) : QLatin1Char('.')) + tail;
}
