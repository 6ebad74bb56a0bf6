#pragma once

#include "KelWidgetGlobal.h"

#include <QComboBox>

/// A drop-down list in the style of the other controls. The wheel changes it only while it has the focus, so that the
/// wheel scrolls the panel around it. Colors come from the palette. GUI thread.
class KELWIDGET_EXPORT ChoiceBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ChoiceBox(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
};
