#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QLabel>

#include <memory>

/// Shows the playback time and, if the length is known, a slash and the length. Seconds are truncated. GUI thread.
class KELMOVIE_EXPORT KelPlayTimeLable : public QLabel
{
    Q_OBJECT

public:
    explicit KelPlayTimeLable(QWidget *parent = nullptr);
    ~KelPlayTimeLable() override;

    /// Length in ms, unknown below 1. Shown from the next setPlayTime() on.
    void setDuration(qint64 ms);
    /// Playback position in ms.
    void setPlayTime(qint64 ms);

private:
    void updateText();

    class Private;
    std::unique_ptr<Private> d;
};
