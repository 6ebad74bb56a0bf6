#pragma once

#include "widget/LabelWidthFloatPanel.h"

#include <KelMovie/KelMovieGlobal.h>

#include <memory>

/// The length of the running recording; before it, the delay with which it will start, which a click lets the user
/// change. GUI thread.
class KELMOVIE_EXPORT KelRecordTimeLable : public LabelWidthFloatPanel
{
    Q_OBJECT

public:
    explicit KelRecordTimeLable(QWidget *parent = nullptr);
    ~KelRecordTimeLable() override;

    void setIsRecording(bool recording);
    /// In ms. Negative during the start delay.
    void setRecordTime(qint64 ms);
    /// Shows the settings as they are now.
    void updateText();

private:
    class Private;
    std::unique_ptr<Private> d;
};
