#pragma once

#include <QByteArray>

/// The rows of a PNG image before they are compressed, each with its filter byte in front.
namespace av::png
{

enum class Filtering {
    None,    ///< the bytes as they are: best where areas repeat, as in most of what screens show
    Adaptive ///< for each row the differences to its neighbours that take the fewest bits: best for photographs
};

/// `rowBytes` of `pixels` make a row, `pixelBytes` a pixel.
QByteArray filteredRows(const QByteArray &pixels, int rowBytes, int pixelBytes, Filtering filtering);

} // namespace av::png
