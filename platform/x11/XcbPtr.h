#pragma once

#include <cstdlib>
#include <memory>

namespace kel
{

struct XcbFree {
    void operator()(void *pointer) const { std::free(pointer); }
};

/// A reply, an event or an error returned by XCB.
template <typename T>
using XcbPtr = std::unique_ptr<T, XcbFree>;

} // namespace kel
