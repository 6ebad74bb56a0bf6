#pragma once

#include <QString>

/// The log of the recording engine. Only shown on demand, except for warnings that input cannot be recorded, because a
/// recording without mouse or keystrokes does not fail. The first critical message explains a failure. Any thread.
namespace MessageLog
{

/// Starts to handle Qt's messages. `verbose` prints all of them to standard error.
void install(bool verbose);

/// The first critical message; empty if there was none.
QString firstCritical();

} // namespace MessageLog
