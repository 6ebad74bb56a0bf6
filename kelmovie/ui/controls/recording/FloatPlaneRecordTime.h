#pragma once

#include "widget/FloatPanel.h"

class KelRecordTimeLable;
class QLabel;

namespace kel
{

class ChoiceList;

/// The panel of KelRecordTimeLable: chooses and saves the start delay.
class FloatPlaneRecordTime : public FloatPanel
{
    Q_OBJECT

public:
    explicit FloatPlaneRecordTime(KelRecordTimeLable *label);

    void updateQSS() override;

private:
    QLabel *const m_title;
    ChoiceList *const m_list;
};

} // namespace kel
