#pragma once

#include "screen/KelScreenManager.h"

#include <memory>

namespace kel
{

/// The backend of this operating system.
std::unique_ptr<KelScreenBackend> createNativeScreenBackend();

} // namespace kel
