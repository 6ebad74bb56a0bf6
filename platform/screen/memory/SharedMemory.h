#pragma once

#include <cstddef>

namespace kel
{

/// Anonymous memory that another process can map through a file descriptor. It is freed when no process uses it.
class SharedMemory
{
public:
    explicit SharedMemory(std::size_t bytes);
    ~SharedMemory();
    SharedMemory(const SharedMemory &) = delete;
    SharedMemory &operator=(const SharedMemory &) = delete;

    /// Null when it could not be allocated.
    unsigned char *data() const { return m_data; }

    /// A new descriptor of the memory, which the caller closes; -1 on error.
    int descriptor() const;

private:
    const std::size_t m_bytes;
    int m_fd;
    unsigned char *m_data = nullptr;
};

} // namespace kel
