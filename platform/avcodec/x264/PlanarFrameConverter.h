#pragma once

#include <QImage>
#include <QSize>

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

namespace av
{

/// A frame in the planar layout that the encoder takes, created by PlanarFrameConverter.
struct PlanarFrame {
    struct Plane {
        std::vector<uint8_t> samples;
        int stride = 0;
    };
    std::array<Plane, 3> planes;

    /// One byte per macroblock of 16 x 16 pixels, row by row: 1 if it equals the previous frame.
    std::vector<uint8_t> unchanged;

private:
    friend class PlanarFrameConverter;
    std::atomic<bool> m_inUse{false};
    int64_t m_number = -1; // number of the image in the planes
};

/// Converts a sequence of images to planar frames, at a cost proportional to the changes. Frames are reused: each
/// macroblock is compared with the previous image, and only those that changed since the frame's last use are
/// converted. Frames are converted on one thread and may be released on another.
class PlanarFrameConverter
{
public:
    enum class Layout {
        Gbr444,      ///< RGB, one full plane each of green, blue and red
        Bt709Yuv420, ///< Y'CbCr, BT.709, limited range; odd sizes are padded by repeating the last column and row
    };

    /// `capacity`: number of frames that can be in use at the same time.
    PlanarFrameConverter(const QSize &imageSize, Layout layout, int capacity);

    /// Size of the converted frames: that of the images, rounded up to even numbers for 4:2:0.
    QSize frameSize() const { return m_frameSize; }

    /// Converts an image of the size and any format; translucent pixels are blended with black. The frame belongs to
    /// the caller until release(). Null if all frames are in use.
    PlanarFrame *convert(const QImage &image);

    /// Returns a frame for reuse. Any thread.
    void release(PlanarFrame *frame);

private:
    void findChanges(const QImage &image, int blockRow);
    void copyRun(const QImage &image, int blockRow, int firstBlock, int endBlock);
    void padEdges(int blockRow);
    void convertRow(PlanarFrame &frame, int blockRow);
    void convertRun(PlanarFrame &frame, int blockRow, int firstBlock, int endBlock);
    void allocate(PlanarFrame &frame) const;
    uint32_t *referenceLine(int y) { return m_reference.data() + std::size_t(y) * m_referenceStride; }

    const QSize m_imageSize;
    const QSize m_frameSize;
    const Layout m_layout;
    const int m_blockColumns;
    const int m_blockRows;
    const int m_referenceStride;       // pixels
    std::vector<uint32_t> m_reference; // the last image, padded to whole macroblocks
    std::vector<int64_t> m_changedAt;  // per macroblock: number of the image that last changed it
    int64_t m_number = -1;             // number of the last image
    std::vector<PlanarFrame> m_frames;
};

} // namespace av
