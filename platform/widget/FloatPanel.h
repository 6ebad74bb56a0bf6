#pragma once

#include "KelWidgetGlobal.h"

#include <QPointer>
#include <QWidget>

/// A small panel that floats beside the control it belongs to. It opens on demand and closes at a click outside, at
/// Escape or by hideManual(). What it shows is put into it by layout; the first child that takes the focus gets it on
/// opening. Colours come from the palette. GUI thread.
class KELWIDGET_EXPORT FloatPanel : public QWidget
{
    Q_OBJECT

public:
    explicit FloatPanel(QWidget *parent = nullptr);

    /// A panel that is not enabled does not open, and closes at once.
    void setDisplayEnable(bool enable);
    bool isDisplayEnabled() const { return m_isDisplayEnabled; }

    /// Lays the panel out for its present screen and colours. Called before each opening; to be extended by panels
    /// whose content has sizes of its own.
    virtual void updateQSS();

    /// Opens below the control, above it where there is no room below, and always on its screen.
    void popupBeside(QWidget *anchor);

public slots:
    void hideManual();

signals:
    void sigVisibleChanged(bool visible);

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
