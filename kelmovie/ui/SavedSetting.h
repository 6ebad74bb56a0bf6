#pragma once

#include "config/KelConfigIO.h"
#include "config/KelMovieConfig.h"

/// Changes a setting and keeps it in the host's store; without one, for as long as the program runs.
inline void saveSetting(const QString &key, int *field, int value)
{
    if (gKelMovieConfigIO)
        gKelMovieConfigIO->saveInt(key, value);
    else
        *field = value;
}
