#include "widgets/DockStyle.h"

#include "dockicon/KelDockIcon.h"
#include "style/KelStyleTheme.h"

// A static library does not register its resources by itself. Q_INIT_RESOURCE must be used outside of namespaces.
static void initResources()
{
    Q_INIT_RESOURCE(widgets);
}

void applyDockStyle(QWidget *widget, const QString &sheet)
{
    initResources();
    KelDockIcon::family(); // loads the font before a sheet refers to it
    KelStyleTheme::instance()->appleStyleTo(widget, {QLatin1String(":/KelDock/") + sheet});
}
