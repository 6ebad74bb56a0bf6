#pragma once

#include <utility>

#include <unistd.h>

namespace kel
{

/// An open file, closed at the end of the scope; or the failure to open it.
class Descriptor
{
public:
    explicit Descriptor(int number = -1)
        : m_number(number)
    {
    }
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(Descriptor &&other) noexcept
        : m_number(other.release())
    {
    }
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }

    bool isValid() const { return m_number >= 0; }
    int get() const { return m_number; }

    /// The caller closes it.
    int release() { return std::exchange(m_number, -1); }

private:
    int m_number;
};

} // namespace kel
