#pragma once

#include <QWidget>

/// A frame around the area to record. It lies just outside the area, so it is never recorded, and mouse clicks pass
/// through it. GUI thread.
class AreaFrame : public QWidget
{
    Q_OBJECT

public:
    enum class Look { Ready, Recording, Paused };

    explicit AreaFrame(QWidget *parent = nullptr);

    /// Shows the frame around an area in logical pixels of the desktop. An empty area hides it.
    void showAround(const QRect &area);
    void setLook(Look look);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Look m_look = Look::Ready;
};
