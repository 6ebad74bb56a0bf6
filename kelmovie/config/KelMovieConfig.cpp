#include "KelMovieConfig.h"
