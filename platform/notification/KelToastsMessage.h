#pragma once

#include <QPropertyAnimation>
#include <QTimer>
#include <QWidget>

/// A short message over a window or on the screen that does not take the focus and fades out by itself. GUI thread.
class KelToastsMessage : public QWidget
{
    Q_OBJECT

public:
    enum Type { Information = 0, Success = 1, Warning = 2, Error = 3 };

    /// Shows `text` over the window of `parent`, or near the top of the screen with the mouse pointer when `parent` is
    /// null. Replaces the toast that is currently shown.
    ///
    /// With `fades` the toast disappears after `durationMs` (later while the pointer is over it), otherwise it stays
    /// until it is clicked. With `hasCloseButton` it shows a cross; a click anywhere on a toast closes it in any case.
    static void showMessage(QWidget *parent, int type, const QString &text, int durationMs = 3000, bool fades = true,
                            bool hasCloseButton = false);

    /// Places toasts without a parent outside of `area` (logical pixels of the desktop) where there is room, and closes
    /// a shown toast that overlaps it. An empty rectangle lifts the restriction.
    static void avoid(const QRect &area);

    QString text() const { return m_text; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    KelToastsMessage(Type type, const QString &text, bool hasCloseButton);

    void appear(int durationMs, bool fades);
    void fadeTo(double opacity);
    void place(const QWidget *anchor);
    QRect textRect() const;
    QRect iconRect() const;
    QRect closeRect() const;

    const Type m_type;
    const QString m_text;
    const bool m_hasCloseButton;
    bool m_fades = true;
    QTimer m_timer;
    QPropertyAnimation m_fade;
};
