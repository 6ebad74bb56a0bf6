#include "TerminalScript.h"

#include "SceneColors.h"

#include <algorithm>

namespace
{
constexpr int FramesPerCharacter = 2;
constexpr int FramesPerOutput = 5;
constexpr int FramesBeforeTyping = 20;
constexpr int FramesBeforeAnswer = 8;
constexpr int BlinkFrames = 15;
} // namespace

TerminalScript::TerminalScript(const QRect &area, int fontPx)
    : m_area(area)
    , m_fontPx(fontPx)
    , m_lineHeight(fontPx * 3 / 2)
    , m_lines(SceneText::session())
{
    for (const SceneText::TerminalLine &line : m_lines) {
        m_start.append(m_cycle);
        m_cycle += line.isTyped ? FramesBeforeTyping + line.text.size() * FramesPerCharacter + FramesBeforeAnswer
                                : FramesPerOutput;
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
        characters = qBound(0, (position - m_start.at(line) - FramesBeforeTyping) / FramesPerCharacter, characters);
    return {cycles * m_lines.size() + line, characters, frame / BlinkFrames % 2 == 0};
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
    const int advance = painter.fontMetrics().horizontalAdvance(QLatin1Char('m'));
    const int first = qMax(0, state.line - rows() + 1);
    for (int line = first; line <= state.line; ++line) {
        const SceneText::TerminalLine &content = m_lines.at(line % m_lines.size());
        const QRect row = rowRect(line - first);
        const bool isLast = line == state.line;
        const QString text = isLast ? content.text.left(state.characters) : content.text;
        int x = row.x();
        if (content.isTyped) {
            painter.setPen(SceneColors::Prompt);
            painter.drawText(QRect(x, row.y(), row.width(), row.height()), Qt::AlignVCenter, QStringLiteral("$"));
            x += 2 * advance;
        }
        painter.setPen(content.isTyped ? SceneColors::Text : SceneColors::Dimmed);
        painter.drawText(QRect(x, row.y(), row.right() - x, row.height()), Qt::AlignVCenter, text);
        if (isLast && state.hasCaret)
            painter.fillRect(x + text.size() * advance + 1, row.y() + 2, advance - 1, row.height() - 4,
                             SceneColors::Text);
    }
}
