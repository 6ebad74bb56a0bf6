#pragma once

#include "KelWidgetGlobal.h"

#include <QSlider>

/// A slim horizontal slider. A press anywhere moves the knob there and starts dragging it; keys and wheel work as on
/// any slider. Colors come from the palette. GUI thread.
class KELWIDGET_EXPORT MiniSlider : public QSlider
{
    Q_OBJECT

public:
    explicit MiniSlider(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    double knobRadius() const;
    /// The line along which the center of the knob moves.
    QRectF grooveLine() const;
    int valueAt(double x) const;
};
