#pragma once

#include "widget/LabelWidthFloatPanel.h"

#include <KelMovie/KelMovieGlobal.h>

#include <memory>

/// The play speed; a click offers others. GUI thread.
class KELMOVIE_EXPORT PlaySpeedLabel : public LabelWidthFloatPanel
{
    Q_OBJECT

public:
    explicit PlaySpeedLabel(QWidget *parent = nullptr);
    ~PlaySpeedLabel() override;

    /// 1.0 is as recorded. No signal.
    void setSpeed(double speed);
    double getSpeed() const;

    /// "1.5X"
    static QString speedText(double speed);

signals:
    /// The user chose.
    void sigSpeedChanged(double speed);

private:
    class Private;
    std::unique_ptr<Private> d;
};
