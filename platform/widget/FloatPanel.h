#pragma once

#include "KelWidgetGlobal.h"

#include <QPointer>
#include <QWidget>

/// A small popup beside the control it belongs to. It closes at a click outside, at Escape or by hideManual(). Its
/// content is added with a layout; the first child that accepts the focus gets it when the panel opens. Colors come
/// from the palette. GUI thread.
class KELWIDGET_EXPORT FloatPanel : public QWidget
{
    Q_OBJECT

public:
    explicit FloatPanel(QWidget *parent = nullptr);

    /// A disabled panel does not open; disabling closes an open one.
    void setDisplayEnable(bool enable);
    bool isDisplayEnabled() const { return m_isDisplayEnabled; } ///< whether the panel may open

    /// Adapts the panel to its current screen and colors. Called before each opening. Panels with sizes of their own
    /// extend it.
    virtual void updateQSS();

    /// Opens below `anchor`, above it when there is no room below, within the screen of `anchor`.
    void popupBeside(QWidget *anchor);

public slots:
    void hideManual(); ///< closes the panel

signals:
    void sigVisibleChanged(bool visible); ///< the panel opened or closed

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QPointer<QWidget> m_anchor;
    bool m_isDisplayEnabled = true;
};
