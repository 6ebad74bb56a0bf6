#pragma once

#include "widget/LabelWidthFloatPanel.h"

#include <KelMovie/KelMovieGlobal.h>

#include <memory>

/// Shows the playback speed. A click opens a panel that changes it. GUI thread.
class KELMOVIE_EXPORT PlaySpeedLabel : public LabelWidthFloatPanel
{
    Q_OBJECT

public:
    explicit PlaySpeedLabel(QWidget *parent = nullptr);
    ~PlaySpeedLabel() override;

    /// 1.0 is the recorded speed, and the initial value. Emits no signal.
    void setSpeed(double speed);
    double getSpeed() const; ///< The speed shown

    /// The speed as the label shows it: "1.5X".
    static QString speedText(double speed);

signals:
    /// The user chose a speed; the label shows it already.
    void sigSpeedChanged(double speed);

private:
    class Private;
    std::unique_ptr<Private> d;
};
