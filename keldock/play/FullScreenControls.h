#pragma once

#include <QObject>
#include <QTimer>

class QBoxLayout;
class QWidget;

/// The controls below the canvas. In full screen they overlay the canvas, so that it keeps its place, and hide together
/// with the pointer while the pointer rests.
class FullScreenControls : public QObject
{
    Q_OBJECT

public:
    /// `layout` lays out `page`; `controls` is its last row. Takes no ownership. The page is the parent.
    FullScreenControls(QWidget *page, QBoxLayout *layout, QWidget *canvas, QWidget *controls);

    void setActive(bool on);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setShown(bool shown);
    void place();

    QWidget *const m_page;
    QBoxLayout *const m_layout;
    QWidget *const m_canvas;
    QWidget *const m_controls;
    QTimer m_restTimer;
    bool m_isActive = false;
};
