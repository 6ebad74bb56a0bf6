#pragma once

#include "KelWidgetGlobal.h"

#include <QCheckBox>

/// A check box in the form of a switch, without text. Colors come from the palette. GUI thread.
class KELWIDGET_EXPORT ToggleSwitch : public QCheckBox
{
    Q_OBJECT

public:
    explicit ToggleSwitch(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &point) const override;

private:
};
