#pragma once

namespace av
{

/// Redirects the errors that FFmpeg's libraries log to Qt's logging and discards their other messages, for the whole
/// process. Any thread, any number of times.
void useQtLog();

} // namespace av
