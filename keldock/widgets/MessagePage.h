#pragma once

#include "dockicon/Glyph.h"

#include <QWidget>

#include <functional>

class QHBoxLayout;
class QLabel;

/// A page that is shown when there is no content: a message and buttons to resolve the situation.
class MessagePage : public QWidget
{
    Q_OBJECT

public:
    explicit MessagePage(KelDockIcon::Glyph glyph, QWidget *parent = nullptr);

    /// Both are plain text; `detail` may be empty.
    void setMessage(const QString &title, const QString &detail);
    QString title() const;
    QString detail() const;

    /// Adds a button. The first one is the primary one.
    void addAction(const QString &text, const QString &toolTip, const std::function<void()> &action);

private:
    QLabel *m_title = nullptr;
    QLabel *m_detail = nullptr;
    QHBoxLayout *m_buttons = nullptr;
};
