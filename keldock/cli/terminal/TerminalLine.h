#pragma once

#include <QString>

/// A line of the terminal that is redrawn in place. Prints nothing if standard output is not a terminal, so that files
/// and pipes get no fragments.
class TerminalLine
{
public:
    TerminalLine();
    ~TerminalLine();
    TerminalLine(const TerminalLine &) = delete;
    TerminalLine &operator=(const TerminalLine &) = delete;

    /// Whether standard output is a terminal.
    bool isShown() const { return m_isTerminal; }

    /// Replaces the line. Text beyond the width of the terminal is cut off.
    void show(const QString &text);

    /// Keeps the line and continues below it.
    void finish();

    /// Erases the line.
    void clear();

private:
    const bool m_isTerminal;
    QString m_text;
};
