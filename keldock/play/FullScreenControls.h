#pragma once

#include <QObject>
#include <QTimer>

class QBoxLayout;
class QWidget;

/// The controls below a picture. In full screen they lie over the picture, and hide, with the pointer, while the
/// pointer rests; the picture stays where it is.
class FullScreenControls : public QObject
{
    Q_OBJECT

public:
    /// `controls` are the last row of `page`, which `layout` lays out, and `picture` is another. None is owned.
    FullScreenControls(QWidget *page, QBoxLayout *layout, QWidget *picture, QWidget *controls);

    void setActive(bool on);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setShown(bool shown);
    void place();

    QWidget *const m_page;
    QBoxLayout *const m_layout;
    QWidget *const m_picture;
    QWidget *const m_controls;
    QTimer m_rest;
    bool m_isActive = false;
};
