#pragma once

#include "SceneText.h"

#include <QPainter>
#include <QRect>
#include <QVector>

/// A terminal in which someone types commands that are then answered.
class TerminalScript
{
public:
    TerminalScript(const QRect &area, int fontPx);

    /// What changes between the frame before and this one.
    QRect changed(int frame) const;

    void paint(QPainter &painter, int frame) const;

private:
    struct State {
        int line;       ///< the last line that is there
        int characters; ///< of that line
        bool hasCaret;
    };

    State stateAt(int frame) const;
    int rows() const { return m_area.height() / m_lineHeight; }
    QRect rowRect(int row) const;

    const QRect m_area;
    const int m_fontPx;
    const int m_lineHeight;
    const QVector<SceneText::TerminalLine> m_lines;
    QVector<int> m_start; ///< the frame of the cycle at which a line begins
    int m_cycle = 0;      ///< frames until all begins again
};
