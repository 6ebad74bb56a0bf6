#include "cli/terminal/TerminalLine.h"

#include "cli/terminal/Console.h"

TerminalLine::TerminalLine()
    : m_isTerminal(Console::isTerminal())
{
}

TerminalLine::~TerminalLine()
{
    finish();
}

void TerminalLine::show(const QString &text)
{
    if (!m_isTerminal)
        return;
    // The last column stays empty: terminals differ in when they wrap after it.
    const QString fitting = text.left(Console::width() - 1);
    if (fitting == m_text)
        return;
    m_text = fitting;
    // Overwrites the line and erases the rest. Erasing first would flicker.
    Console::print(QStringLiteral("\r%1\x1b[K").arg(m_text));
    Console::flush();
}

void TerminalLine::finish()
{
    if (m_text.isEmpty())
        return;
    m_text.clear();
    Console::print(QStringLiteral("\n"));
    Console::flush();
}

void TerminalLine::clear()
{
    if (m_text.isEmpty())
        return;
    m_text.clear();
    Console::print(QStringLiteral("\r\x1b[K"));
    Console::flush();
}
