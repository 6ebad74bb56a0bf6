#pragma once

#include <QFrame>

#include <functional>

class QLabel;
class QPushButton;

/// One line in a window that tells something and may offer to do something about it. Hidden until there is a notice.
class NoticeBar : public QFrame
{
    Q_OBJECT

public:
    explicit NoticeBar(QWidget *parent = nullptr);

    /// In place of the notice before. Without `action` there is no button for it.
    void tell(const QString &text, const QString &actionText = QString(), const std::function<void()> &action = {});
    QString text() const;

private:
    QLabel *m_label = nullptr;
    QPushButton *m_button = nullptr;
    std::function<void()> m_action;
};
