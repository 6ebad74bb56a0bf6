#pragma once

namespace kel
{

/// While one of these exists, a crash does not write the memory of this process to disk. On Linux a side effect is that
/// other processes of the user cannot read its memory either, as a debugger does. Any thread.
class CoreDumpBlock
{
public:
    CoreDumpBlock();
    ~CoreDumpBlock();
    CoreDumpBlock(const CoreDumpBlock &) = delete;
    CoreDumpBlock &operator=(const CoreDumpBlock &) = delete;

private:
    static bool areDumpsOn();
    static void switchDumps(bool on);
};

} // namespace kel
