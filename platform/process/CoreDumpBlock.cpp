#include "process/CoreDumpBlock.h"

#include <mutex>

namespace kel
{

namespace
{
std::mutex mutex; // guards what follows
int blockCount = 0;
bool wereDumpsOn = false;
} // namespace

CoreDumpBlock::CoreDumpBlock()
{
    std::lock_guard lock(mutex);
    if (blockCount++ > 0)
        return;
    wereDumpsOn = areDumpsOn();
    switchDumps(false);
}

CoreDumpBlock::~CoreDumpBlock()
{
    std::lock_guard lock(mutex);
    if (--blockCount == 0 && wereDumpsOn)
        switchDumps(true);
}

} // namespace kel
