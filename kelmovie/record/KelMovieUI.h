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

    static QString version();
};
