#pragma once

#include "CodeStrip.h"
#include "FloatingCard.h"
#include "SceneBackdrop.h"
#include "TerminalScript.h"

#include <QImage>
#include <QPainter>
#include <QRegion>
#include <QSize>

/// A desktop at work: scrolling source code, a terminal in which someone types, a small window that moves about. Every
/// pixel is a function of the frame number, so that a recording of the scene can be compared with what really was
/// there.
class SceneRenderer
{
public:
    explicit SceneRenderer(const QSize &size);

    QSize size() const { return m_layout.size; }

    /// What differs between the frame before and this one; all of it for frame 0.
    QRegion changed(int frame) const;

    /// Paints those parts of the frame that lie in `region`.
    void paint(QPainter &painter, int frame, const QRegion &region) const;

    /// The whole frame.
    QImage picture(int frame) const;

private:
    const SceneLayout m_layout;
    const QImage m_backdrop;
    const CodeStrip m_code;
    const TerminalScript m_terminal;
    const FloatingCard m_card;
    QImage m_terminalWindow;
};
