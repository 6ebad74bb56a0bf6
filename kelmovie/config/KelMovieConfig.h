#pragma once
#include <KelMovie/KelMovieGlobal.h>
