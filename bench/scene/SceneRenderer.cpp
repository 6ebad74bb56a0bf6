#include "SceneRenderer.h"

#include "FrameMark.h"

namespace
{
constexpr int kScrollPerFrame = 2; // pixels
} // namespace

SceneRenderer::SceneRenderer(const QSize &size)
    : m_layout(size)
    , m_backdrop(paintSceneBackdrop(m_layout))
    , m_code(m_layout.code.width(), m_layout.fontPx)
    , m_terminal(m_layout.terminalText, m_layout.fontPx)
    , m_card(size, m_layout.card)
    , m_terminalWindow(paintTerminalWindow(m_layout))
{
}

QRegion SceneRenderer::changed(int frame) const
{
    const QRect all(QPoint(), m_layout.size);
    if (frame <= 0)
        return all;
    QRegion region = m_layout.code;
    region += m_terminal.changed(frame);
    region += m_card.extent(frame - 1);
    region += m_card.extent(frame);
    region += FrameMark::rect(m_layout.size);
    return region & all;
}

void SceneRenderer::paint(QPainter &painter, int frame, const QRegion &region) const
{
    painter.setClipRegion(region);
    for (const QRect &rect : region)
        painter.drawImage(rect, m_backdrop, rect);
    m_code.paint(painter, m_layout.code, frame * kScrollPerFrame);
    const QPoint margin(kShadowMargin, kShadowMargin);
    painter.drawImage(m_layout.terminal.topLeft() - margin, m_terminalWindow);
    m_terminal.paint(painter, frame);
    m_card.paint(painter, frame);
    FrameMark::paint(painter, FrameMark::rect(m_layout.size).topLeft(), frame);
}

QImage SceneRenderer::image(int frame) const
{
    QImage image(m_layout.size, QImage::Format_RGB32);
    QPainter painter(&image);
    paint(painter, frame, QRect(QPoint(), m_layout.size));
    return image;
}
