#pragma once

#include "KelWidgetGlobal.h"

#include <QColor>
#include <QPushButton>

/// A button that shows a colour and lets the user choose another, opacity included. GUI thread.
class KELWIDGET_EXPORT ColorSelectButton : public QPushButton
{
    Q_OBJECT

public:
    explicit ColorSelectButton(QWidget *parent = nullptr);

    QColor color() const { return m_color; }
    /// No signal.
    void setColor(const QColor &color);

    QSize sizeHint() const override;

signals:
    /// The user sees another colour: while trying colours, and again the first one when giving up.
    void sigColorChanged(const QColor &color);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void choose();
    void take(const QColor &color);

    QColor m_color = Qt::black;
};
