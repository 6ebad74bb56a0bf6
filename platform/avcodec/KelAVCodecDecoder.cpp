#include "avcodec/KelAVCodecDecoder.h"
