#pragma once

#include "widget/LabelWidthFloatPanel.h"

#include <KelMovie/KelMovieGlobal.h>

/// The frame rate of the next recording; a click offers others. GUI thread.
class KELMOVIE_EXPORT KelRecordFpsLabel : public LabelWidthFloatPanel
{
    Q_OBJECT

public:
    explicit KelRecordFpsLabel(QWidget *parent = nullptr);

    /// Shows the setting as it is now.
    void updateText();
};
