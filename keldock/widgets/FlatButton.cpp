#include "widgets/FlatButton.h"

#include "dockicon/KelDockIcon.h"
#include "style/KelStyleTheme.h"
#include "widgets/DockStyle.h"

#include <QPushButton>

namespace
{

QPushButton *createFlatButton(KelDockIcon::Glyph glyph, const QString &action, QWidget *parent)
{
    KelDockIcon::family(); // loads the font before a sheet refers to it
    auto *const button = new QPushButton(KelDockIcon::text(glyph), parent);
    button->setFlat(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setToolTip(action);
    button->setAccessibleName(action.section(QLatin1String(" ("), 0, 0));
    return button;
}

} // namespace

QPushButton *createStripButton(KelDockIcon::Glyph glyph, const QString &action, QWidget *parent)
{
    QPushButton *const button = createFlatButton(glyph, action, parent);
    applyDockStyle(button, QStringLiteral("StripButton"));
    return button;
}

QPushButton *createBarButton(KelDockIcon::Glyph glyph, const QString &action, QWidget *parent)
{
    QPushButton *const button = createFlatButton(glyph, action, parent);
    button->setCursor(Qt::PointingHandCursor);
    KelStyleTheme::instance()->appleStyleTo(button, {QStringLiteral(":/KelMovie/GlyphButton")});
    return button;
}
