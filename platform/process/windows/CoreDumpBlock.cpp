#include "process/CoreDumpBlock.h"

#include <windows.h>

#include <werapi.h>

namespace kel
{

namespace
{
DWORD reportingFlags()
{
    DWORD flags = 0;
    WerGetFlags(GetCurrentProcess(), &flags);
    return flags;
}
} // namespace

bool CoreDumpBlock::areDumpsOn()
{
    return !(reportingFlags() & WER_FAULT_REPORTING_FLAG_NOHEAP);
}

void CoreDumpBlock::switchDumps(bool on)
{
    const DWORD noHeap = WER_FAULT_REPORTING_FLAG_NOHEAP;
    WerSetFlags(on ? reportingFlags() & ~noHeap : reportingFlags() | noHeap);
}

} // namespace kel
