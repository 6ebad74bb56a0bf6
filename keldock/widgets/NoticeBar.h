#pragma once

#include <QFrame>

#include <functional>

class QLabel;
class QPushButton;

/// A line of text in a window with an optional button and a close button. Hidden until there is a notice.
class NoticeBar : public QFrame
{
    Q_OBJECT

public:
    explicit NoticeBar(QWidget *parent = nullptr);

    /// Replaces the previous notice. `actionText` labels the button; without `action` there is none.
    void showNotice(const QString &text, const QString &actionText = QString(),
                    const std::function<void()> &action = {});
    /// The notice that is shown; empty while the bar is hidden.
    QString text() const;

private:
    QLabel *m_label = nullptr;
    QPushButton *m_button = nullptr;
    std::function<void()> m_action;
};
