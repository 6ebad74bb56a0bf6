#include "app/RecorderProgram.h"
#include "cli/CommandLine.h"

int main(int argc, char **argv)
{
    return argc > 1 ? CommandLine::run(argc, argv) : RecorderProgram::run(argc, argv);
}
