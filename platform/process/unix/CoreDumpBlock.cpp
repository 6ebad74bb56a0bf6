#include "process/CoreDumpBlock.h"

#include <sys/prctl.h>

namespace kel
{

// A size limit of zero would not do: dumps that the system pipes to a program are not subject to it.

bool CoreDumpBlock::areDumpsOn()
{
    return prctl(PR_GET_DUMPABLE) == 1;
}

void CoreDumpBlock::switchDumps(bool on)
{
    prctl(PR_SET_DUMPABLE, on ? 1L : 0L);
}

} // namespace kel
