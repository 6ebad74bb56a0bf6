#pragma once

#include "CodeStrip.h"
#include "FloatingCard.h"
#include "SceneBackdrop.h"
#include "TerminalScript.h"

#include <QImage>
#include <QPainter>
#include <QRegion>
#include <QSize>

/// A busy desktop: scrolling source code, a terminal with typing, a small moving window. Every pixel is a function of
/// the frame number, so that a recording can be compared with the exact original.
class SceneRenderer
{
public:
    explicit SceneRenderer(const QSize &size);

    QSize size() const { return m_layout.size; }

    /// What differs between the previous frame and this one; everything for frame 0.
    QRegion changed(int frame) const;

    /// Paints the part of the frame inside `region`.
    void paint(QPainter &painter, int frame, const QRegion &region) const;

    /// The whole frame.
    QImage image(int frame) const;

private:
    const SceneLayout m_layout;
    const QImage m_backdrop;
    const CodeStrip m_code;
    const TerminalScript m_terminal;
    const FloatingCard m_card;
    QImage m_terminalWindow;
};
