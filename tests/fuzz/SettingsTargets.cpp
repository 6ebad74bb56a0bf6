// The file in which the host keeps all settings.

#include "FuzzTarget.h"

#include "settings/DockConfigIO.h"

#include <KelMovie/KelMovieConfig.h>

#include <QFile>

void applySettings(const QByteArray &content)
{
    // QSettings recognizes a changed file by its time, which is too coarse here.
    static int number = 0;
    const QString path = writeScratch(QString("keldock-%1.ini").arg(++number), content);
    gKelMovieConfig = KelMovieConfig();
    {
        DockConfigIO store(path);
        KelMovieConfigInit(&store);
    }
    KelMovieConfigInit(nullptr);
    QFile::remove(path);
    QFile::remove(path + ".damaged");
}

namespace
{

void settings(const QByteArray &input)
{
    applySettings(input);
    expect(gKelMovieConfig.playbackMouseColor.isValid(), "an invalid color is not taken");
}

} // namespace

std::vector<FuzzTarget> settingsTargets()
{
    return {{"settings", settings}};
}
