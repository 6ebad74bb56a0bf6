#include "avcodec/KelAVCodecEncoder.h"
