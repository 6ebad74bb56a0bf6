#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QString>
#include <QStringList>
#include <QVector>

/// Reports what the module supports on this computer, and checks that it works. GUI thread; needs a QGuiApplication.
/// All files are written to a temporary directory, which is removed afterwards. All texts are English.
class KELMOVIE_EXPORT KelMovieSelfTest
{
public:
    /// The result of one check.
    struct Check {
        QString name;         ///< what is checked, for headings
        QStringList findings; ///< what was found or done, one line each
        QStringList warnings; ///< what is missing although nothing is broken, one line each
        QString error;        ///< why the check failed, in one line; empty if it passed

        bool passed() const { return error.isEmpty(); } ///< true when there is no error
    };

    KelMovieSelfTest() = delete;

    /// Why the screen cannot be captured, as an English sentence; empty if it can.
    static QString screenProblem();

    /// Why clicks, wheel and, with `withKeys`, keys cannot be recorded, in English; empty if they can.
    static QString inputProblem(bool withKeys);

    /// Formats, codecs with the versions of their libraries, hardware decoding, screen capture, input and sound: one
    /// line each.
    static QString featureReport();

    /// Records a part of the screen for half a second, in a nested event loop, and plays it back.
    static Check checkRecording();
    /// Encodes a small video in each of the export formats and decodes it again.
    static Check checkFormats();
    /// Looks for the screen, keyboard and mouse input, the output whose sound is recorded, and the microphone. Missing
    /// input and sound are warnings.
    static Check checkDevices();

    /// Runs all three checks.
    static QVector<Check> runChecks();
};
