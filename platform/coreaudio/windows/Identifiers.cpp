// The interfaces and classes of Core Audio are known by identifiers that the SDK's headers declare everywhere and
// define only here, where this comes first.
#include <initguid.h>

#include "coreaudio/CoreAudio.h"
