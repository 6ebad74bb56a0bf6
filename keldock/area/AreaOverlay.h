#pragma once

#include "area/AreaSelection.h"

#include <QPixmap>
#include <QWidget>

class AreaPicker;

/// The area picker on one screen: a screenshot, dimmed except for the area, and buttons beside the area. Passes the
/// user's input to the picker.
class AreaOverlay : public QWidget
{
    Q_OBJECT

public:
    /// Takes the screenshot. `picker` is not owned and must outlive the overlay.
    AreaOverlay(AreaPicker *picker, QScreen *screen);

    void appear();
    /// Grabs the keyboard from all programs.
    void takeKeyboard();
    /// Repaints after the picker's selection has changed.
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
    const QPixmap m_screenshot;
    QWidget *const m_buttons;
};
