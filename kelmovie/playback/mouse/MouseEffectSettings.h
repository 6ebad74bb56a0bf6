#pragma once

#include "playback/mouse/MouseClick.h"

namespace kel
{

/// Which clicks and turns of the wheel have an effect.
struct MouseEffectSettings {
    int shownButtons = 7; // bits in the order of MouseButton
    bool showWheel = true;
    bool replaceSameButton = false; // a click ends the running effects of its button

    bool isShown(MouseButton button) const
    {
        return button != MouseButton::Other && (shownButtons >> int(button) & 1) != 0;
    }
};

} // namespace kel
