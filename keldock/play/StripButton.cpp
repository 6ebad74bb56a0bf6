#include "play/StripButton.h"

#include "dockicon/KelDockIcon.h"
#include "style/KelStyleTheme.h"

#include <QPushButton>

QPushButton *stripButton(KelDockIcon::Glyph glyph, const QString &action, QWidget *parent)
{
    KelDockIcon::family(); // loaded before the sheet names it
    auto *const button = new QPushButton(KelDockIcon::text(glyph), parent);
    button->setFlat(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setToolTip(action);
    button->setAccessibleName(action.section(QLatin1String(" ("), 0, 0));
    KelStyleTheme::instance()->appleStyleTo(button, {QStringLiteral(":/KelDock/StripButton")});
    return button;
}
