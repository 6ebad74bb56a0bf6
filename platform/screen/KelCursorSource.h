#pragma once

#include "screen/KelCursorPixmap.h"

/// Provides snapshots of the pointer. Created on the GUI thread, then used by any thread.
class KelCursorSource
{
public:
    virtual ~KelCursorSource() = default;

    /// The current pointer. Thread-safe.
    virtual KelCursorPixmap read() = 0;
};
