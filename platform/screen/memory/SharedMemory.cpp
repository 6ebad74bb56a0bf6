#include "screen/memory/SharedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kel
{

SharedMemory::SharedMemory(std::size_t bytes)
    : m_bytes(bytes)
    , m_fd(memfd_create("kelmovie-screen", MFD_CLOEXEC))
{
    if (m_fd < 0 || ftruncate(m_fd, off_t(bytes)) != 0)
        return;
    void *mapped = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, m_fd, 0);
    if (mapped != MAP_FAILED)
        m_data = static_cast<unsigned char *>(mapped);
}

SharedMemory::~SharedMemory()
{
    if (m_data)
        munmap(m_data, m_bytes);
    if (m_fd >= 0)
        close(m_fd);
}

int SharedMemory::descriptor() const
{
    return m_fd < 0 ? -1 : fcntl(m_fd, F_DUPFD_CLOEXEC, 0);
}

} // namespace kel
