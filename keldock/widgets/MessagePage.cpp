#include "widgets/MessagePage.h"

#include "dockicon/KelDockIcon.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{

QLabel *addLabel(QVBoxLayout *layout, const char *objectName)
{
    auto *const label = new QLabel;
    label->setObjectName(QLatin1String(objectName));
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    layout->addWidget(label);
    return label;
}

} // namespace

MessagePage::MessagePage(KelDockIcon::Glyph glyph, QWidget *parent)
    : QWidget(parent)
{
    auto *const layout = new QVBoxLayout(this);
    layout->addStretch(2);
    addLabel(layout, "MessageGlyph")->setText(KelDockIcon::text(glyph));
    m_title = addLabel(layout, "MessageTitle");
    m_detail = addLabel(layout, "MessageDetail");
    m_detail->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_buttons = new QHBoxLayout;
    m_buttons->addStretch();
    m_buttons->addStretch();
    layout->addLayout(m_buttons);
    layout->addStretch(3);
}

void MessagePage::setMessage(const QString &title, const QString &detail)
{
    m_title->setText(title);
    m_detail->setText(detail);
    m_detail->setVisible(!detail.isEmpty());
}

QString MessagePage::title() const
{
    return m_title->text();
}

QString MessagePage::detail() const
{
    return m_detail->text();
}

void MessagePage::addAction(const QString &text, const QString &toolTip, const std::function<void()> &action)
{
    auto *const button = new QPushButton(text);
    if (m_buttons->count() == 2) {
        button->setObjectName(QStringLiteral("PrimaryButton"));
        setFocusProxy(button);
    }
    button->setToolTip(toolTip);
    button->setAccessibleDescription(toolTip);
    connect(button, &QPushButton::clicked, this, action);
    m_buttons->insertWidget(m_buttons->count() - 1, button);
}
