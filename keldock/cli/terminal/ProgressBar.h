#pragma once

#include "cli/terminal/TerminalLine.h"

#include <QElapsedTimer>
#include <QString>

/// A progress bar on the terminal with percentage and a note. Prints nothing if standard output is not a terminal.
class ProgressBar
{
public:
    /// `label` is shown before the bar.
    explicit ProgressBar(const QString &label);

    /// Sets the progress, 0 to 100. Redraws at most about ten times per second.
    void show(int percent);

    /// Sets the note after the percentage. At 100 percent the elapsed time is shown instead.
    void showNote(const QString &note);

    /// Removes the bar unless it is full.
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
