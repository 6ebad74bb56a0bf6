#pragma once

#include "widget/FloatPanel.h"

class ChoiceList;
class KelRecordTimeLable;
class QLabel;

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
