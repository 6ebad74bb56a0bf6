#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QLabel>

#include <memory>

/// The play time, and after a slash the length when one is known. GUI thread.
class KELMOVIE_EXPORT KelPlayTimeLable : public QLabel
{
    Q_OBJECT

public:
    explicit KelPlayTimeLable(QWidget *parent = nullptr);
    ~KelPlayTimeLable() override;

    /// In ms. Shown with the next play time.
    void setDuration(qint64 ms);
    /// In ms.
    void setPlayTime(qint64 ms);

private:
    void updateText();

    class Private;
    std::unique_ptr<Private> d;
};
