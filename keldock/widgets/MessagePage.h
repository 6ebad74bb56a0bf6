#pragma once

#include "dockicon/Glyph.h"

#include <QWidget>

#include <functional>

class QHBoxLayout;
class QLabel;

/// A page instead of a picture: what is the matter, and what one can do about it.
class MessagePage : public QWidget
{
    Q_OBJECT

public:
    explicit MessagePage(KelDockIcon::Glyph glyph, QWidget *parent = nullptr);

    /// `detail` may be empty. Shown as plain text.
    void setMessage(const QString &title, const QString &detail);
    QString title() const;
    QString detail() const;

    /// A button; the first one is the main one.
    void addAction(const QString &text, const QString &toolTip, const std::function<void()> &action);

private:
    QLabel *m_title = nullptr;
    QLabel *m_detail = nullptr;
    QHBoxLayout *m_buttons = nullptr;
};
