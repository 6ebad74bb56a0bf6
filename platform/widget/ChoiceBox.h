#pragma once

#include "KelWidgetGlobal.h"

#include <QComboBox>

/// A drop-down list that looks like the other controls here. The wheel changes it only while it has the focus, so that
/// a panel can be scrolled over it. Colours come from the palette. GUI thread.
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
