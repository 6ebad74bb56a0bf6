#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

/// The layout of a scene of a given size.
struct SceneLayout {
    explicit SceneLayout(const QSize &size);

    QSize size;
    int fontPx;    ///< of code and terminal
    int titleBar;  ///< height of a window's title bar
    int statusBar; ///< height of the editor's status bar
    QRect editor;
    QRect fileList;
    QRect code;
    QRect terminal;
    QRect terminalText;
    QSize card;
};

/// The static background: the desktop and the editor without its code.
QImage paintSceneBackdrop(const SceneLayout &layout);

/// The empty terminal with its shadow on transparent pixels, drawn over the code. kShadowMargin larger on every side.
QImage paintTerminalWindow(const SceneLayout &layout);

/// A soft shadow for a rounded rectangle of that size, `kShadowMargin` larger on every side.
constexpr int kShadowMargin = 40;
QImage paintShadow(const QSize &size, int radius);
