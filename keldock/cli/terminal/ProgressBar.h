#pragma once

#include "cli/terminal/TerminalLine.h"

#include <QElapsedTimer>
#include <QString>

/// A bar on the terminal with percent and a note. Silent where there is no terminal.
class ProgressBar
{
public:
    /// `label` stands before the bar.
    explicit ProgressBar(const QString &label);

    /// 0 to 100. Draws at most some ten times a second.
    void show(int percent);

    /// What is to stand behind the percent until it is full; the time that it took stands there then.
    void showNote(const QString &note);

    /// Takes the bar away, or leaves it standing once it is full.
    void finish();

private:
    void draw();
    QString line(int columns) const;

    const QString m_label;
    QString m_note;
    TerminalLine m_line;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceDrawn;
    int m_percent = 0;
};
