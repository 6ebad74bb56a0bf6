#include "CodeStrip.h"

#include "SceneColors.h"
#include "SceneText.h"

#include <QRegularExpression>

namespace
{

struct Rule {
    const char *group;
    QColor color;
};

const QRegularExpression &tokens()
{
    static const QRegularExpression kExpression(QStringLiteral(
        "(?<comment>//.*)|(?<string>\"[^\"]*\"|<[a-z]+>)|(?<preprocessor>#\\w+)|"
        "(?<number>\\b\\d[\\d.]*f?\\b)|"
        "(?<keyword>\\b(?:alignas|auto|bool|char|class|const|explicit|float|if|inline|namespace|noexcept|private|"
        "public|return|static_assert|struct|template|typename|true|false)\\b)|"
        "(?<type>\\b[A-Z]\\w*|\\bstd\\b)|(?<call>\\b\\w+(?=\\())|(?<member>\\bm_\\w+)"));
    return kExpression;
}

QColor colorOf(const QRegularExpressionMatch &match)
{
    static const Rule kRules[] = {{"comment", SceneColors::kComment},
                                  {"string", SceneColors::kString},
                                  {"preprocessor", SceneColors::kPreprocessor},
                                  {"number", SceneColors::kNumber},
                                  {"keyword", SceneColors::kKeyword},
                                  {"type", SceneColors::kType},
                                  {"call", SceneColors::kCall},
                                  {"member", SceneColors::kMember}};
    for (const Rule &rule : kRules) {
        if (!match.captured(QLatin1String(rule.group)).isEmpty())
            return rule.color;
    }
    return SceneColors::kText;
}

void paintLine(QPainter &painter, const QPoint &baseline, const QString &line)
{
    const int advance = painter.fontMetrics().horizontalAdvance('m');
    painter.setPen(SceneColors::kText);
    painter.drawText(baseline, line);
    QRegularExpressionMatchIterator matches = tokens().globalMatch(line);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QPoint at(baseline.x() + match.capturedStart() * advance, baseline.y());
        const QRect place(at.x(), at.y() - painter.fontMetrics().ascent(), match.capturedLength() * advance,
                          painter.fontMetrics().height());
        painter.fillRect(place, SceneColors::kEditorBackground);
        painter.setPen(colorOf(match));
        painter.drawText(at, match.captured());
    }
}

} // namespace

CodeStrip::CodeStrip(int width, int fontPx)
{
    const QStringList lines = SceneText::code();
    const int lineHeight = fontPx * 3 / 2;
    m_strip = QImage(width, lines.size() * lineHeight, QImage::Format_RGB32);
    m_strip.fill(SceneColors::kEditorBackground);
    QPainter painter(&m_strip);
    painter.setFont(SceneColors::codeFont(fontPx));
    const int advance = painter.fontMetrics().horizontalAdvance('m');
    for (int i = 0; i < lines.size(); ++i) {
        const int baseline = i * lineHeight + (lineHeight + painter.fontMetrics().ascent()) / 2 - 1;
        painter.setPen(SceneColors::kLineNumber);
        painter.drawText(advance, baseline, QString::number(i + 1).rightJustified(3));
        paintLine(painter, QPoint(advance * 6, baseline), lines.at(i));
    }
}

void CodeStrip::paint(QPainter &painter, const QRect &area, int offset) const
{
    int source = offset % m_strip.height();
    for (int y = area.top(); y <= area.bottom();) {
        const int rows = qMin(m_strip.height() - source, area.bottom() + 1 - y);
        painter.drawImage(QPoint(area.x(), y), m_strip, QRect(0, source, area.width(), rows));
        y += rows;
        source = 0;
    }
}
