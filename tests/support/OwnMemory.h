#pragma once

#include <QByteArray>
#include <QFile>

#include <functional>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

/// All writable memory of this process.
namespace OwnMemory
{

using Visitor = std::function<void(const QByteArray &region)>;

/// Passes a copy of each region to the visitor and then overwrites the copy.
inline void read(const Visitor &visit)
{
    QByteArray region;
#ifdef _WIN32
    MEMORY_BASIC_INFORMATION info;
    for (const char *place = nullptr; VirtualQuery(place, &info, sizeof info) != 0;
         place = static_cast<const char *>(info.BaseAddress) + info.RegionSize) {
        if (info.State != MEM_COMMIT || info.Protect != PAGE_READWRITE || info.RegionSize > (256 << 20))
            continue;
        region.fill('\0', int(info.RegionSize));
        SIZE_T count = 0;
        ReadProcessMemory(GetCurrentProcess(), info.BaseAddress, region.data(), info.RegionSize, &count);
        region.truncate(int(count));
        visit(region);
        region.fill('\0');
    }
#else
    QFile maps("/proc/self/maps");
    if (!maps.open(QIODevice::ReadOnly))
        qFatal("cannot read the memory map");
    const int memory = ::open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    for (const QByteArray &line : maps.readAll().split('\n')) {
        const QList<QByteArray> words = line.split(' ');
        if (words.size() < 2 || !words[1].startsWith("rw"))
            continue;
        const qint64 begin = words[0].split('-')[0].toLongLong(nullptr, 16);
        const qint64 size = words[0].split('-')[1].toLongLong(nullptr, 16) - begin;
        if (size > (256 << 20)) // shadow memory of a sanitizer
            continue;
        region.fill('\0', int(size));
        region.truncate(int(qMax(ssize_t(0), pread(memory, region.data(), std::size_t(size), begin))));
        visit(region);
        region.fill('\0');
    }
    ::close(memory);
#endif
}

} // namespace OwnMemory
