#pragma once

#include <QWidget>

/// Counts the seconds until a recording starts, in the center of its area. GUI thread.
class CountdownOverlay : public QWidget
{
    Q_OBJECT

public:
    explicit CountdownOverlay(QWidget *parent = nullptr);

    /// Shows the number with `hint` below it; 0 hides the overlay.
    void showSeconds(int secondsLeft, const QRect &area, const QString &hint);

signals:
    /// The user has pressed Escape or clicked.
    void cancelled();

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    int m_secondsLeft = 0;
    QString m_hint;
};
