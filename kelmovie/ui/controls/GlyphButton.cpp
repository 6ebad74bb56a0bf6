#include "ui/controls/GlyphButton.h"

#include "dockicon/KelDockIcon.h"
#include "style/KelStyleTheme.h"

#include <QPushButton>

namespace kel
{

void GlyphButton::prepare(QPushButton *button)
{
    KelDockIcon::family(); // the font must be loaded before the style sheet names it
    button->setFlat(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setCursor(Qt::PointingHandCursor);
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    KelStyleTheme::instance()->appleStyleTo(button, {QStringLiteral(":/KelMovie/GlyphButton")});
}

void GlyphButton::show(QPushButton *button, KelDockIcon::Glyph glyph, const QString &action)
{
    button->setText(KelDockIcon::text(glyph));
    button->setToolTip(action);
    button->setAccessibleName(action);
}

bool GlyphButton::shows(const QPushButton *button, KelDockIcon::Glyph glyph)
{
    return button->text() == KelDockIcon::text(glyph);
}

} // namespace kel
