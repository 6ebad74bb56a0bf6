#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QObject>
#include <QString>

class KelMultiTrackRecorder;

/// The module's entry: makes recorders. GUI thread only.
class KELMOVIE_EXPORT KelMovieUI : public QObject
{
    Q_OBJECT

public:
    explicit KelMovieUI(QObject *parent = nullptr);
    ~KelMovieUI() override;

    /// A new recorder, owned by this object.
    KelMultiTrackRecorder *createMultiTrackRecorder();

    /// Writes the part from `startMs` to `endMs` of a sound file to `outputPath`, whose suffix chooses the format (m4a,
    /// mp3, wav, flac, ogg, opus, …); below 0 stands for the beginning and the end. Returns `outputPath`, or an empty
    /// string after a warning in the log; an existing file is replaced only when the new one is whole.
    static QString createTrimmedAudioFile(const QString &audioPath, int startMs, int endMs, const QString &outputPath);

    static QString version();
};
