#include "widgets/DockStyle.h"

#include "dockicon/KelDockIcon.h"
#include "style/KelStyleTheme.h"

// A static library's resources are not there by themselves. Must stand outside of every namespace.
static void initResources()
{
    Q_INIT_RESOURCE(widgets);
}

void applyDockStyle(QWidget *widget, const QString &sheet)
{
    initResources();
    KelDockIcon::family(); // loaded before a sheet names it
    KelStyleTheme::instance()->appleStyleTo(widget, {QStringLiteral(":/KelDock/") + sheet});
}
