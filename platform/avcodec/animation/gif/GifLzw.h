#pragma once

#include <QByteArray>
#include <QColor>

#include <atomic>
#include <vector>

namespace av
{

/// A frame as indices into a palette. Distances are squared and summed over the channels.
struct IndexedFrame {
    std::vector<QRgb> pixels;    ///< the exact colors, as in FrameDelta
    std::vector<quint8> indices; ///< the best palette color for each pixel
    std::vector<QRgb> palette;   ///< at most 256 colors
    int transparent = -1;        ///< index that leaves a pixel unchanged; -1: none
    int tolerance = 0;           ///< largest distance at which another color may replace the best one
    double errorPerBit = 0;      ///< total distance that is accepted to save one bit
};

/// LZW-compresses a frame to the image data of a GIF file: code size, blocks of codes and the terminator.
///
/// Most pixels can be coded in more than one way: an unchanged one may be transparent or repeat its color, and with a
/// tolerance every similar color will do. Several alternatives are followed at once, and the one that matches the
/// longest dictionary strings is written. Once `cancelled` is set, returns early with unusable data.
QByteArray gifImageData(const IndexedFrame &frame, const std::atomic<bool> &cancelled);

} // namespace av
