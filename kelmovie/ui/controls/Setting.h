#pragma once

#include "config/KelConfigIO.h"
#include "config/KelMovieConfig.h"

#include <QColor>
#include <QString>

namespace kel
{

inline void save(KelConfigIO &store, const QString &key, bool value)
{
    store.saveBool(key, value);
}

inline void save(KelConfigIO &store, const QString &key, int value)
{
    store.saveInt(key, value);
}

inline void save(KelConfigIO &store, const QString &key, const QColor &value)
{
    store.saveColor(key, value);
}

/// A field of gKelMovieConfig and its key in the host's store.
template <typename T>
struct Setting {
    QLatin1String key; ///< empty: never saved
    T KelMovieConfig::*field;

    const T &value() const { return gKelMovieConfig.*field; }

    /// Sets the field and saves it if it has a key and there is a store. False if the store failed to save it; the
    /// field is set all the same.
    bool setValue(const T &value) const
    {
        bool isSaved = true;
        if (gKelMovieConfigIO && !key.isEmpty()) {
            save(*gKelMovieConfigIO, key, value);
            isSaved = this->value() == value; // a store sets the bound field when it saves
        }
        gKelMovieConfig.*field = value;
        return isSaved;
    }
};

} // namespace kel
