#pragma once

#include "widget/FloatPanel.h"

class PlaySpeedLabel;

namespace kel
{

class ChoiceList;

/// The panel of PlaySpeedLabel: chooses the playback speed.
class FloatPlanePlaySpeed : public FloatPanel
{
    Q_OBJECT

public:
    explicit FloatPlanePlaySpeed(PlaySpeedLabel *label);

    void updateQSS() override;

private:
    PlaySpeedLabel *const m_label;
    ChoiceList *const m_list;
};

} // namespace kel
