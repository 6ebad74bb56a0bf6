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
    // The last column stays free: terminals differ in what they do once it is written.
    const QString fitting = text.left(Console::width() - 1);
    if (fitting == m_text)
        return;
    m_text = fitting;
    // Written over and erased only behind the text: erasing first would flicker.
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
