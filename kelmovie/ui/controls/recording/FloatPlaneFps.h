#pragma once

#include "widget/FloatPanel.h"

class KelRecordFpsLabel;

namespace kel
{

class ChoiceList;

/// The frame rates that a label offers.
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
