#pragma once

#include <QByteArray>
#include <QColor>

#include <atomic>
#include <vector>

namespace av
{

/// A picture as the palette shows it.
struct IndexedFrame {
    std::vector<QRgb> pixels;    ///< what it should look like, see FrameDelta
    std::vector<quint8> indices; ///< the best color of each pixel
    std::vector<QRgb> palette;   ///< at most 256 colors
    int transparent = -1;        ///< index that leaves a pixel as it was; below 0 when there is none
    int tolerance = 0;           ///< squared distance (all channels together) by which another color may differ
    double errorPerBit = 0;      ///< such distance, of all pixels together, that is worth a bit
};

/// The image data of a GIF frame: code size, blocks of codes and the terminator.
///
/// Most pixels leave a choice. One that did not change may be transparent or repeat its color, and with a tolerance
/// every color that is near enough will do. Several ways to go on are followed at once, and the one that the
/// dictionary carries furthest is written. Ends early, with what nobody can use, once `cancelled` is set.
QByteArray gifImageData(const IndexedFrame &picture, const std::atomic<bool> &cancelled);

} // namespace av
