#pragma once

#include <QString>

/// One line of the terminal that is drawn again and again in place. Where standard output is no terminal it stays
/// silent, so that a log file or a pipe gets no fragments.
class TerminalLine
{
public:
    TerminalLine();
    ~TerminalLine();
    TerminalLine(const TerminalLine &) = delete;
    TerminalLine &operator=(const TerminalLine &) = delete;

    bool isShown() const { return m_isTerminal; }

    /// Replaces the line; what does not fit into the terminal is cut off.
    void show(const QString &text);

    /// Leaves the line as it is and goes on below it.
    void finish();

    /// Takes the line away again.
    void clear();

private:
    const bool m_isTerminal;
    QString m_text;
};
