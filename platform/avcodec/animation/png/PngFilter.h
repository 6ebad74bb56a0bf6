#pragma once

#include <QByteArray>

/// Filters the rows of a PNG image before compression; each row is preceded by its filter type byte.
namespace av::png
{

enum class Filtering {
    None,    ///< unfiltered: best where areas repeat, as in most screen content
    Adaptive ///< per row, the filter whose output has the lowest entropy: best for photographs
};

/// `rowBytes` of `pixels` make a row, `pixelBytes` a pixel.
QByteArray filteredRows(const QByteArray &pixels, int rowBytes, int pixelBytes, Filtering filtering);

} // namespace av::png
