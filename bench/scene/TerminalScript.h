#pragma once

#include "SceneText.h"

#include <QPainter>
#include <QRect>
#include <QVector>

/// A terminal in which commands are typed and print their output.
class TerminalScript
{
public:
    TerminalScript(const QRect &area, int fontPx);

    /// What changes between the previous frame and this one.
    QRect changed(int frame) const;

    void paint(QPainter &painter, int frame) const;

private:
    struct State {
        int line;       ///< the last visible line
        int characters; ///< typed in that line
        bool hasCaret;
    };

    State stateAt(int frame) const;
    int rows() const { return m_area.height() / m_lineHeight; }
    QRect rowRect(int row) const;

    const QRect m_area;
    const int m_fontPx;
    const int m_lineHeight;
    const QVector<SceneText::TerminalLine> m_lines;
    QVector<int> m_start; ///< the frame of the cycle at which each line starts
    int m_cycle = 0;      ///< frames until the script repeats
};
