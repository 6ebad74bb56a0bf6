#pragma once

#include <QScrollArea>

/// A page that scrolls where it does not fit. As wide as its content plus the scroll bar, so that it scrolls sideways
/// only where the window cannot be wide enough.
class ScrollPage : public QScrollArea
{
    Q_OBJECT

public:
    /// Takes ownership of `content`.
    explicit ScrollPage(QWidget *content, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int scrollBarWidth() const;
};
