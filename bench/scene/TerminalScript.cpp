#include "TerminalScript.h"

#include "SceneColors.h"

#include <algorithm>

namespace
{
constexpr int kFramesPerCharacter = 2;
constexpr int kFramesPerOutput = 5;
constexpr int kFramesBeforeTyping = 20;
constexpr int kFramesBeforeAnswer = 8;
constexpr int kBlinkFrames = 15;
} // namespace

TerminalScript::TerminalScript(const QRect &area, int fontPx)
    : m_area(area)
    , m_fontPx(fontPx)
    , m_lineHeight(fontPx * 3 / 2)
    , m_lines(SceneText::session())
{
    for (const SceneText::TerminalLine &line : m_lines) {
        m_start.append(m_cycle);
        m_cycle += line.isTyped ? kFramesBeforeTyping + line.text.size() * kFramesPerCharacter + kFramesBeforeAnswer
                                : kFramesPerOutput;
    }
}

TerminalScript::State TerminalScript::stateAt(int frame) const
{
    const int cycles = 1 + frame / m_cycle; // it begins with one session on the screen
    const int position = frame % m_cycle;
    const int line = static_cast<int>(std::upper_bound(m_start.begin(), m_start.end(), position) - m_start.begin()) - 1;
    const SceneText::TerminalLine &current = m_lines.at(line);
    int characters = current.text.size();
    if (current.isTyped)
        characters = qBound(0, (position - m_start.at(line) - kFramesBeforeTyping) / kFramesPerCharacter, characters);
    return {cycles * m_lines.size() + line, characters, frame / kBlinkFrames % 2 == 0};
}

QRect TerminalScript::rowRect(int row) const
{
    return QRect(m_area.x(), m_area.y() + row * m_lineHeight, m_area.width(), m_lineHeight);
}

QRect TerminalScript::changed(int frame) const
{
    const State before = stateAt(frame - 1);
    const State now = stateAt(frame);
    const bool isFull = now.line >= rows();
    if (before.line != now.line)
        return isFull ? m_area : rowRect(before.line).united(rowRect(now.line));
    if (before.characters != now.characters || before.hasCaret != now.hasCaret)
        return rowRect(isFull ? rows() - 1 : now.line);
    return QRect();
}

void TerminalScript::paint(QPainter &painter, int frame) const
{
    const State state = stateAt(frame);
    painter.setFont(SceneColors::codeFont(m_fontPx));
    const int advance = painter.fontMetrics().horizontalAdvance('m');
    const int first = qMax(0, state.line - rows() + 1);
    for (int line = first; line <= state.line; ++line) {
        const SceneText::TerminalLine &content = m_lines.at(line % m_lines.size());
        const QRect row = rowRect(line - first);
        const bool isLast = line == state.line;
        const QString text = isLast ? content.text.left(state.characters) : content.text;
        int x = row.x();
        if (content.isTyped) {
            painter.setPen(SceneColors::kPrompt);
            painter.drawText(QRect(x, row.y(), row.width(), row.height()), Qt::AlignVCenter, "$");
            x += 2 * advance;
        }
        painter.setPen(content.isTyped ? SceneColors::kText : SceneColors::kDimmed);
        painter.drawText(QRect(x, row.y(), row.right() - x, row.height()), Qt::AlignVCenter, text);
        if (isLast && state.hasCaret)
            painter.fillRect(x + text.size() * advance + 1, row.y() + 2, advance - 1, row.height() - 4,
                             SceneColors::kText);
    }
}
