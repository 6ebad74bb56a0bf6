#pragma once

/// The program keldock as a person calls it: picks the command, answers --help and --version, and turns the outcome
/// into words and an exit status.
namespace CommandLine
{

/// Needs at least one argument besides the program's name. 0 done, 1 it failed, 2 wrong usage.
int run(int argc, char **argv);

} // namespace CommandLine
