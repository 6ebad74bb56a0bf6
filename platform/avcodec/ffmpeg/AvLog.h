#pragma once

namespace av
{

/// Passes what FFmpeg's libraries report as errors to Qt's logger, and drops their chatter. Any thread, any number of
/// times; it holds for the whole process.
void useQtLog();

} // namespace av
