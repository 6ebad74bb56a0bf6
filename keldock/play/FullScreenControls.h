#pragma once

#include <QObject>
#include <QTimer>

class QWidget;

/// In full screen: hides the controls and the pointer while the pointer rests over the picture, and shows them again as
/// soon as it moves.
class FullScreenControls : public QObject
{
    Q_OBJECT

public:
    /// Neither is owned.
    FullScreenControls(QWidget *picture, QWidget *controls);

    void setActive(bool on);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setShown(bool shown);

    QWidget *const m_picture;
    QWidget *const m_controls;
    QTimer m_rest;
    bool m_isActive = false;
};
