#include "widgets/StripButton.h"

#include "dockicon/KelDockIcon.h"
#include "widgets/DockStyle.h"

#include <QPushButton>

QPushButton *stripButton(KelDockIcon::Glyph glyph, const QString &action, QWidget *parent)
{
    auto *const button = new QPushButton(KelDockIcon::text(glyph), parent);
    button->setFlat(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setToolTip(action);
    button->setAccessibleName(action.section(QLatin1String(" ("), 0, 0));
    applyDockStyle(button, QStringLiteral("StripButton"));
    return button;
}
