// The SDK's headers declare the identifiers of Core Audio everywhere but define them only where initguid.h is included
// first: here.
#include <initguid.h>

#include "coreaudio/CoreAudio.h"
