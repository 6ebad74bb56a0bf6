#pragma once

#include "config/KelConfigIO.h"
#include "config/KelMovieConfig.h"

namespace kel
{

/// A field of the settings record with its key in the host's store; without a key it lasts as long as the program.
template <typename T>
struct Setting {
    QLatin1String key; ///< empty: not persisted
    T KelMovieConfig::*field;

    const T &value() const { return gKelMovieConfig.*field; }
};

inline void writeTo(KelConfigIO &store, const QString &key, bool value)
{
    store.saveBool(key, value);
}

inline void writeTo(KelConfigIO &store, const QString &key, int value)
{
    store.saveInt(key, value);
}

inline void writeTo(KelConfigIO &store, const QString &key, const QColor &value)
{
    store.saveColor(key, value);
}

/// Changes a setting and keeps it in the host's store; without one, for as long as the program runs. False when the
/// store did not take it: it lasts as long as the program then, too.
template <typename T>
bool saveSetting(const QString &key, T *field, const T &value)
{
    if (gKelMovieConfigIO)
        writeTo(*gKelMovieConfigIO, key, value);
    const bool isKept = !gKelMovieConfigIO || *field == value;
    *field = value;
    return isKept;
}

} // namespace kel
