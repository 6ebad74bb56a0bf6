#include "settings/DockSettings.h"

#include <KelMovie/KelConfigIO.h>

#include <QStringList>

const QString DockSettings::RecordingsFolderKey = QStringLiteral("KelDock.recordingsFolder");
const QString DockSettings::ThemeKey = QStringLiteral("KelDock.theme");
const QString DockSettings::LanguageKey = QStringLiteral("KelDock.language");
const QString DockSettings::RecordKeysKey = QStringLiteral("KelDock.shortcut.record");
const QString DockSettings::PauseKeysKey = QStringLiteral("KelDock.shortcut.pause");
const QString DockSettings::StopKeysKey = QStringLiteral("KelDock.shortcut.stop");
const QString DockSettings::AreaKey = QStringLiteral("KelDock.area");
const QString DockSettings::OfferedLeftoversKey = QStringLiteral("KelDock.offeredLeftovers");

void DockSettings::bind(KelConfigIO &io)
{
    io.bindString(RecordingsFolderKey, &recordingsFolder);
    io.bindInt(ThemeKey, &theme);
    io.bindString(LanguageKey, &language);
    io.bindString(RecordKeysKey, &recordKeys);
    io.bindString(PauseKeysKey, &pauseKeys);
    io.bindString(StopKeysKey, &stopKeys);
    io.bindString(AreaKey, &area);
    io.bindString(OfferedLeftoversKey, &offeredLeftovers);
}

QRect DockSettings::lastArea() const
{
    const QStringList numbers = area.split(QLatin1Char(' '));
    if (numbers.size() != 4)
        return {};
    return {numbers.at(0).toInt(), numbers.at(1).toInt(), numbers.at(2).toInt(), numbers.at(3).toInt()};
}

void DockSettings::saveArea(KelConfigIO &io, const QRect &area)
{
    io.saveString(AreaKey,
                  QStringLiteral("%1 %2 %3 %4").arg(area.x()).arg(area.y()).arg(area.width()).arg(area.height()));
}
