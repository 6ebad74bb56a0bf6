#pragma once

#include <cstddef>

namespace kel
{

/// Anonymous memory that another process maps through a file descriptor; it is gone with its last user.
class SharedMemory
{
public:
    explicit SharedMemory(std::size_t bytes);
    ~SharedMemory();
    SharedMemory(const SharedMemory &) = delete;
    SharedMemory &operator=(const SharedMemory &) = delete;

    /// Null when the system has none.
    unsigned char *data() const { return m_data; }

    /// A new descriptor for it, which the caller closes; -1 when there is none.
    int descriptor() const;

private:
    const std::size_t m_bytes;
    int m_fd;
    unsigned char *m_data = nullptr;
};

} // namespace kel
