#pragma once

#include <QWidget>

/// The seconds until a recording starts, large, in the middle of its area. GUI thread.
class CountdownOverlay : public QWidget
{
    Q_OBJECT

public:
    explicit CountdownOverlay(QWidget *parent = nullptr);

    /// 0 makes it vanish. `hint` stands below the number.
    void count(int secondsLeft, const QRect &area, const QString &hint);

signals:
    /// The person does not want to record after all.
    void cancelled();

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    int m_secondsLeft = 0;
    QString m_hint;
};
