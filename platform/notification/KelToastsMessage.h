#pragma once

#include <QPropertyAnimation>
#include <QTimer>
#include <QWidget>

/// A small note that appears over a window or the screen, takes no focus and fades by itself. GUI thread.
class KelToastsMessage : public QWidget
{
    Q_OBJECT

public:
    enum Type { Information = 0, Success = 1, Warning = 2, Error = 3 };

    /// Shows `text` over the window of `parent`, or near the top of the screen that holds the mouse pointer when there
    /// is no parent. A toast that is already there gives way.
    ///
    /// With `fades` the toast goes after `durationMs` (later while the pointer rests on it), otherwise it stays until
    /// it is clicked. With `hasCloseButton` it shows a cross; a click anywhere on a toast closes it anyway.
    static void showMessage(QWidget *parent, int type, const QString &text, int durationMs = 3000, bool fades = true,
                            bool hasCloseButton = false);

    /// From now on toasts without a parent stand outside of `area`, in logical pixels of the desktop, where there is
    /// room; an empty one ends that. One that stands in there now closes.
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
