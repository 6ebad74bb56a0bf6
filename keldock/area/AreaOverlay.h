#pragma once

#include "area/AreaSelection.h"

#include <QPixmap>
#include <QWidget>

class AreaPicker;

/// What the area picker shows on one screen: its still picture, dim except for the area, and the buttons beside that.
/// It passes on what the person does.
class AreaOverlay : public QWidget
{
    Q_OBJECT

public:
    AreaOverlay(AreaPicker *picker, QScreen *screen);

    void appear();
    /// Keys come here from now on, whichever window has the focus.
    void takeKeyboard();
    /// The picker's selection has changed.
    void showSelection();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *createButtons();
    void placeButtons();
    void updateCursor(const QPoint &globalPoint);
    void paintHandles(QPainter &painter) const;
    void paintSize(QPainter &painter) const;
    void paintHint(QPainter &painter) const;
    void paintNote(QPainter &painter, const QString &text, QRect box) const;
    QRect local(const QRect &rect) const { return rect.translated(-m_geometry.topLeft()); }

    AreaPicker *const m_picker;
    const QRect m_geometry;
    const QPixmap m_picture;
    QWidget *const m_buttons;
};
