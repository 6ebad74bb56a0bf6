#pragma once

#include "cli/TerminalLine.h"

#include <QElapsedTimer>
#include <QString>

/// A bar on the terminal with percent and the time that is left. Silent where there is no terminal.
class ProgressBar
{
public:
    /// `label` stands before the bar.
    explicit ProgressBar(const QString &label);

    /// 0 to 100. Draws at most some ten times a second.
    void show(int percent);

    /// Takes the bar away, or leaves it standing once it is full.
    void finish();

private:
    QString line(int percent, int columns) const;
    QString timeLeft(int percent) const;

    const QString m_label;
    TerminalLine m_line;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceDrawn;
    int m_percent = 0;
};
