#include "widgets/NoticeBar.h"

#include "widgets/FlatButton.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

NoticeBar::NoticeBar(QWidget *parent)
    : QFrame(parent)
{
    setObjectName(QStringLiteral("NoticeBar"));
    m_label = new QLabel(this);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setWordWrap(true);
    m_button = new QPushButton(this);
    connect(m_button, &QPushButton::clicked, this, [this] { m_action(); });
    QPushButton *const close = createStripButton(KelDockIcon::Glyph::Close, tr("Hide this notice"), this);
    connect(close, &QPushButton::clicked, this, &QWidget::hide);

    auto *const layout = new QHBoxLayout(this);
    layout->addWidget(m_label, 1);
    layout->addWidget(m_button);
    layout->addWidget(close);
    hide();
}

void NoticeBar::showNotice(const QString &text, const QString &actionText, const std::function<void()> &action)
{
    m_label->setText(text);
    m_action = action;
    m_button->setText(actionText);
    m_button->setToolTip(actionText);
    m_button->setVisible(bool(action));
    show();
}

QString NoticeBar::text() const
{
    return isHidden() ? QString() : m_label->text();
}
