#pragma once

/// Runs the commands of keldock, and handles --help and --version.
namespace CommandLine
{

/// Requires at least one argument besides the program name. Prints errors to standard error. Returns the exit status:
/// 0 success, 1 failure, 2 wrong usage.
int run(int argc, char **argv);

} // namespace CommandLine
