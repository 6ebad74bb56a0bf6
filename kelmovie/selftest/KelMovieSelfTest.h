#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QString>
#include <QStringList>
#include <QVector>

/// Tells what the module can do on this computer, and tries whether it does. GUI thread; needs a QGuiApplication.
/// Everything is written into a temporary directory that is gone afterwards. All texts are English.
class KELMOVIE_EXPORT KelMovieSelfTest
{
public:
    struct Check {
        QString name;
        QStringList findings; ///< what was found or done, a line each
        QStringList warnings; ///< what is missing without anything being broken, a line each
        QString error;        ///< why the check failed, in one line; empty when it passed

        bool passed() const { return error.isEmpty(); }
    };

    KelMovieSelfTest() = delete;

    /// Formats, codecs with the versions of their libraries, hardware decoding, the way the screen is captured, input
    /// and sound: a line each.
    static QString featureReport();

    /// Records a piece of the screen for half a second, in a nested event loop, and plays it back.
    static Check checkRecording();
    /// Encodes a little video in each of the export formats and decodes it again.
    static Check checkFormats();
    /// Looks for the screen, the input of keyboard and mouse, the output whose sound is recorded, and the microphone.
    /// Missing sound is a warning.
    static Check checkDevices();

    /// All three.
    static QVector<Check> runChecks();
};
