#pragma once

#include "KelWidgetGlobal.h"

#include <QCheckBox>

/// A check box that looks like a switch, without a text. Colours come from the palette. GUI thread.
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
