#include "process/CoreDumpBlock.h"

#include <windows.h>

// MinGW's werapi.h does not compile.
extern "C" HRESULT WINAPI WerGetFlags(HANDLE process, PDWORD flags);
extern "C" HRESULT WINAPI WerSetFlags(DWORD flags);

namespace kel
{

namespace
{
constexpr DWORD kNoHeap = 1; // WER_FAULT_REPORTING_FLAG_NOHEAP

DWORD reportingFlags()
{
    DWORD flags = 0;
    WerGetFlags(GetCurrentProcess(), &flags);
    return flags;
}
} // namespace

bool CoreDumpBlock::areDumpsOn()
{
    return !(reportingFlags() & kNoHeap);
}

void CoreDumpBlock::switchDumps(bool on)
{
    WerSetFlags(on ? reportingFlags() & ~kNoHeap : reportingFlags() | kNoHeap);
}

} // namespace kel
