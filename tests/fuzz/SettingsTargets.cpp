// The file in which the host keeps all settings.

#include "FuzzTarget.h"

#include "settings/DockConfigIO.h"

#include <KelMovie/KelMovieConfig.h>

#include <QFile>

namespace
{

void settings(const QByteArray &input)
{
    // QSettings recognizes a changed file by its time, which is too coarse here.
    static int number = 0;
    const QString path = writeScratch(QString("keldock-%1.ini").arg(++number), input);
    gKelMovieConfig = KelMovieConfig();
    {
        DockConfigIO store(path);
        KelMovieConfigInit(&store);
    }
    expect(gKelMovieConfig.playbackMouseColor.isValid(), "an invalid color is not taken");
    KelMovieConfigInit(nullptr);
    QFile::remove(path);
    QFile::remove(path + ".damaged");
}

} // namespace

std::vector<FuzzTarget> settingsTargets()
{
    return {{"settings", settings}};
}
