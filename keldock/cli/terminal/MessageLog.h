#pragma once

#include <QString>

/// The log of the engine. A person wants to hear one line when something fails, not the engine's diary: it is shown
/// only on demand, and kept in so far as it explains a failure. What cannot be watched is told in any case: a recording
/// that lacks the mouse or the keys does not fail for it.
namespace MessageLog
{

/// From now on; `verbose` passes every line to standard error.
void install(bool verbose);

/// The first line of the severest kind that was logged, empty when there was none.
QString firstCritical();

} // namespace MessageLog
