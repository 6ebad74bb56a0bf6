#pragma once

#include "KelWidgetGlobal.h"

#include <QLabel>

class FloatPanel;

/// A label that opens a panel at a click, or at Space, Enter or the Down key. GUI thread.
class KELWIDGET_EXPORT LabelWidthFloatPanel : public QLabel
{
    Q_OBJECT

public:
    explicit LabelWidthFloatPanel(QWidget *parent = nullptr);

    /// The label takes ownership of the panel and deletes the previous one.
    void setPanel(FloatPanel *panel);
    FloatPanel *panel() const { return m_panel; } ///< null without a panel

    /// True when there is a panel and both it and the label are enabled.
    bool canOpen() const;
    /// Opens the panel, or closes it when it is open.
    void togglePanel();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    void updateMargins();

    FloatPanel *m_panel = nullptr;
};
