#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QImage>
#include <QObject>
#include <QRect>
#include <QString>

class KelMultiTrackRecorder;

/// The entry point of the module: creates recorders. GUI thread only.
class KELMOVIE_EXPORT KelMovieUI : public QObject
{
    Q_OBJECT

public:
    explicit KelMovieUI(QObject *parent = nullptr);
    ~KelMovieUI() override;

    /// A new recorder, owned by this object.
    KelMultiTrackRecorder *createMultiTrackRecorder();

    /// Writes the range from `startMs` to `endMs` of a sound file to `outputPath`, whose suffix selects the format
    /// (m4a, mp3, wav, flac, ogg, opus, …). Negative values stand for the start and the end of the sound. Returns
    /// `outputPath`; on failure, logs a warning and returns an empty string. An existing file is only replaced by a
    /// complete new one.
    static QString createTrimmedAudioFile(const QString &audioPath, int startMs, int endMs, const QString &outputPath);

    /// Whether clicks, wheel and keys may be read from the input devices of the computer in sessions that show them to
    /// no program, as Wayland does; initially false. Needs a user in the group "input", who thereby lets every program
    /// read everything typed: leave the choice to the user. Takes effect with the next recording, in the whole process.
    static void setReadsInputDevices(bool isAllowed);

    /// What the screen shows in `area` (logical pixels of the desktop) without the pointer, in physical pixels. Null
    /// where the screen cannot be captured, or not without asking a person.
    static QImage screenshot(const QRect &area);

    /// Version of the module, for display.
    static QString version();
};
