#pragma once

#include "widget/FloatPanel.h"

class KelRecordTimeLable;
class QLabel;

namespace kel
{

class ChoiceList;

/// The delays with which a recording may start.
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
