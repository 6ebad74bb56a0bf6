#include "settings/DockSettings.h"

#include <KelMovie/KelConfigIO.h>
#include <KelMovie/KelMovieConfig.h>

#include <QStringList>

const QString DockSettings::kRecordingsFolderKey = QStringLiteral("KelDock.recordingsFolder");
const QString DockSettings::kThemeKey = QStringLiteral("KelDock.theme");
const QString DockSettings::kLanguageKey = QStringLiteral("KelDock.language");
const QString DockSettings::kRecordKeysKey = QStringLiteral("KelDock.shortcut.record");
const QString DockSettings::kPauseKeysKey = QStringLiteral("KelDock.shortcut.pause");
const QString DockSettings::kStopKeysKey = QStringLiteral("KelDock.shortcut.stop");
const QString DockSettings::kReadsInputDevicesKey = QStringLiteral("KelDock.readsInputDevices");
const QString DockSettings::kAsksBeforeRecordingKeysKey = QStringLiteral("KelDock.asksBeforeRecordingKeys");
const QString DockSettings::kAreaKey = QStringLiteral("KelDock.area");
const QString DockSettings::kOfferedRecordingsKey = QStringLiteral("KelDock.offeredLeftovers");

void DockSettings::bind(KelConfigIO &io)
{
    io.bindString(kRecordingsFolderKey, &recordingsFolder);
    io.bindInt(kThemeKey, &theme);
    io.bindString(kLanguageKey, &language);
    io.bindString(kRecordKeysKey, &recordKeys);
    io.bindString(kPauseKeysKey, &pauseKeys);
    io.bindString(kStopKeysKey, &stopKeys);
    io.bindBool(kReadsInputDevicesKey, &readsInputDevices);
    io.bindBool(kAsksBeforeRecordingKeysKey, &asksBeforeRecordingKeys);
    io.bindString(kAreaKey, &area);
    io.bindString(kOfferedRecordingsKey, &offeredRecordings);
    io.bindInt(QStringLiteral("KelDock.mouse.clickEffect"), &gKelMovieConfig.playbackMouseClickEffect);
    io.bindInt(QStringLiteral("KelDock.mouse.wheelEffect"), &gKelMovieConfig.playbackMouseWheelEffect);
    io.bindBool(QStringLiteral("KelDock.mouse.replaceEffects"), &gKelMovieConfig.playbackMouseReplaceEffects);
    io.bindInt(QStringLiteral("KelDock.export.quality"), &gKelMovieConfig.saveQuality);
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
    io.saveString(kAreaKey,
                  QStringLiteral("%1 %2 %3 %4").arg(area.x()).arg(area.y()).arg(area.width()).arg(area.height()));
}
