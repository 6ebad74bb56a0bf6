#pragma once

/// Starts the desktop recorder.
namespace RecorderProgram
{

/// Sets up the process (platform, single instance, settings, language, theme) and runs the recorder until the user
/// quits it. Returns the exit status; 0 as well when another instance is running, which then shows itself.
int run(int argc, char **argv);

} // namespace RecorderProgram
