#pragma once

#include "KelWidgetGlobal.h"

#include <QColor>
#include <QPushButton>

/// A button that shows a color and opens a dialog to select another one, including its opacity. GUI thread.
class KELWIDGET_EXPORT ColorSelectButton : public QPushButton
{
    Q_OBJECT

public:
    explicit ColorSelectButton(QWidget *parent = nullptr);

    QColor color() const { return m_color; } ///< the chosen color
    /// Does not emit sigColorChanged().
    void setColor(const QColor &color);

    QSize sizeHint() const override;

signals:
    /// The user selected another color. Also emitted for each color tried in the dialog, and for the original color
    /// when the dialog is canceled.
    void sigColorChanged(const QColor &color);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void choose();
    void applyColor(const QColor &color);

    QColor m_color = Qt::black;
};
