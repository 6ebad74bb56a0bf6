#include "widgets/WindowStore.h"

QSettings windowStore()
{
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("KelMovie"),
                     QStringLiteral("keldock-windows"));
}
