#pragma once

#include "screen/KelCursorPixmap.h"

/// Where snapshots of the pointer come from. Created on the GUI thread, then asked by any thread.
class KelCursorSource
{
public:
    virtual ~KelCursorSource() = default;

    virtual KelCursorPixmap read() = 0;
};
