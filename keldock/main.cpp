#include "app/RecorderProgram.h"
#include "cli/CommandLine.h"

#include <console/StandardStreams.h>

int main(int argc, char **argv)
{
    kel::prepareStandardStreams();
    return argc > 1 ? CommandLine::run(argc, argv) : RecorderProgram::run(argc, argv);
}
