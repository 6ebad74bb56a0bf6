#pragma once

#include "screen/KelScreenManager.h"

#include <memory>

namespace kel
{

/// The backend of the operating system that this is built for. Each system's folder defines it.
std::unique_ptr<KelScreenBackend> createNativeScreenBackend();

} // namespace kel
