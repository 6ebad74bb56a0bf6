#pragma once

#include "widget/FloatPanel.h"

class KelRecordFpsLabel;

namespace kel
{

class ChoiceList;

/// The panel of KelRecordFpsLabel: chooses and saves the frame rate.
class FloatPlaneFps : public FloatPanel
{
    Q_OBJECT

public:
    explicit FloatPlaneFps(KelRecordFpsLabel *label);

    void updateQSS() override;

private:
    ChoiceList *const m_list;
};

} // namespace kel
