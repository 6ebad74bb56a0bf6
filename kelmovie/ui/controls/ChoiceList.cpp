#include "ui/controls/ChoiceList.h"

#include "style/KelStyleTheme.h"

#include <QKeyEvent>

namespace kel
{

ChoiceList::ChoiceList(QWidget *parent)
    : QListWidget(parent)
{
    setMouseTracking(true); // needed by the hover style
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(NoEditTriggers);
    connect(this, &QListWidget::itemClicked, this, &ChoiceList::choose);
}

void ChoiceList::addChoice(const QString &text, const QVariant &value)
{
    auto *const item = new QListWidgetItem(text, this);
    item->setData(Qt::UserRole, value);
    item->setTextAlignment(Qt::AlignCenter);
}

void ChoiceList::setCurrentValue(const QVariant &value)
{
    setCurrentRow(-1);
    for (int row = 0; row < count(); ++row) {
        if (item(row)->data(Qt::UserRole) == value)
            setCurrentRow(row);
    }
}

void ChoiceList::fit(double scale)
{
    KelStyleTheme::instance()->appleStyleTo(this, {QStringLiteral(":/KelMovie/ChoiceList"), scale});
    int rows = 0;
    for (int row = 0; row < count(); ++row)
        rows += sizeHintForRow(row);
    const int margins = int(6 * scale);
    const int leftTop = margins / 2;
    const int rightBottom = margins - leftTop;
    setViewportMargins(leftTop, leftTop, rightBottom, rightBottom);
    setFixedSize(margins + sizeHintForColumn(0), margins + rows);
}

void ChoiceList::keyPressEvent(QKeyEvent *event)
{
    const bool isChoice =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    // The focus alone makes a row current, but only a selected row is highlighted.
    if (isChoice && currentItem() && currentItem()->isSelected())
        choose(currentItem());
    else
        QListWidget::keyPressEvent(event);
}

void ChoiceList::choose(const QListWidgetItem *item)
{
    emit sigChosen(item->data(Qt::UserRole));
}

} // namespace kel
