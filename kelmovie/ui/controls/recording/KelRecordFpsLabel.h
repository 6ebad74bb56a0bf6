#pragma once

#include "widget/LabelWidthFloatPanel.h"

#include <KelMovie/KelMovieGlobal.h>

/// Shows the frame rate of the next recording, gKelMovieConfig.recordFps. A click opens a panel that changes and saves
/// it. GUI thread.
class KELMOVIE_EXPORT KelRecordFpsLabel : public LabelWidthFloatPanel
{
    Q_OBJECT

public:
    explicit KelRecordFpsLabel(QWidget *parent = nullptr);

    /// Updates the text after the setting was changed elsewhere.
    void updateText();
};
