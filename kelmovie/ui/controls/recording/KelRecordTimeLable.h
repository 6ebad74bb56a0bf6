#pragma once

#include "widget/LabelWidthFloatPanel.h"

#include <KelMovie/KelMovieGlobal.h>

#include <memory>

/// Shows the elapsed time of a recording or, before it starts, the start delay gKelMovieConfig.recordDelay as a
/// negative time. While nothing is recorded, a click opens a panel that changes and saves the delay. GUI thread.
class KELMOVIE_EXPORT KelRecordTimeLable : public LabelWidthFloatPanel
{
    Q_OBJECT

public:
    explicit KelRecordTimeLable(QWidget *parent = nullptr);
    ~KelRecordTimeLable() override;

    /// Switches between elapsed time and start delay; disables the panel while recording.
    void setIsRecording(bool recording);
    /// Elapsed time in ms, negative during the start delay.
    void setRecordTime(qint64 ms);
    /// Updates the text after the setting was changed elsewhere.
    void updateText();

private:
    class Private;
    std::unique_ptr<Private> d;
};
