#pragma once

#include <QWidget>

/// A frame around the recorded area. It stands outside of it, so that it is never in the picture, and clicks go
/// through. GUI thread.
class AreaFrame : public QWidget
{
    Q_OBJECT

public:
    enum class Look { Ready, Recording, Paused };

    explicit AreaFrame(QWidget *parent = nullptr);

    void frame(const QRect &area);
    void setLook(Look look);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Look m_look = Look::Ready;
};
