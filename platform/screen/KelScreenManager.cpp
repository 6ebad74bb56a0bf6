#include "screen/KelScreenManager.h"
