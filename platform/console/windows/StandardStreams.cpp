#include "console/StandardStreams.h"

namespace kel
{

/// Windows gives the number of a closed stream to no other file, and has no such signals.
void prepareStandardStreams() {}

} // namespace kel
