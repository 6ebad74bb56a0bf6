#pragma once

#include <QImage>
#include <QSize>

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

namespace av
{

/// One picture in the planar form that the encoder takes, made by PlanarFrameConverter.
struct PlanarFrame {
    struct Plane {
        std::vector<uint8_t> samples;
        int stride = 0;
    };
    std::array<Plane, 3> planes;

    /// One byte per macroblock of 16 x 16 pixels, row by row: 1 where the picture equals the frame before.
    std::vector<uint8_t> unchanged;

private:
    friend class PlanarFrameConverter;
    std::atomic<bool> m_taken{false};
    int64_t m_number = -1; // of the picture that the planes hold
};

/// Turns a sequence of images into planar frames at the cost of what changed: each macroblock is compared with the
/// image before, and only those that differ from what a frame's planes still hold from its last use are converted.
/// One thread converts; frames may be given back by another.
class PlanarFrameConverter
{
public:
    enum class Layout {
        Gbr444,      ///< RGB, one full plane each of green, blue and red
        Bt709Yuv420, ///< Y'CbCr, BT.709, limited range; odd sizes are padded by repeating the last column and row
    };

    /// `capacity` frames can be out at the same time.
    PlanarFrameConverter(const QSize &imageSize, Layout layout, int capacity);

    /// The size of the planes' picture: the images' size, rounded up to even numbers for 4:2:0.
    QSize pictureSize() const { return m_pictureSize; }

    /// Converts an image of the agreed size, of any format; its colors are taken as they stand over black. The frame
    /// is the caller's until release(). Null when all are out.
    PlanarFrame *convert(const QImage &image);

    /// Gives a frame back. Any thread.
    void release(PlanarFrame *frame);

private:
    void takeChanges(const QImage &image, int blockRow);
    void copyRun(const QImage &image, int blockRow, int firstBlock, int endBlock);
    void padEdges(int blockRow);
    void convertRow(PlanarFrame &frame, int blockRow);
    void convertRun(PlanarFrame &frame, int blockRow, int firstBlock, int endBlock);
    void allocate(PlanarFrame &frame) const;
    uint32_t *referenceLine(int y) { return m_reference.data() + std::size_t(y) * m_referenceStride; }

    const QSize m_imageSize;
    const QSize m_pictureSize;
    const Layout m_layout;
    const int m_blockColumns;
    const int m_blockRows;
    const int m_referenceStride;       // pixels
    std::vector<uint32_t> m_reference; // the last image, padded to whole macroblocks
    std::vector<int64_t> m_changedAt;  // per macroblock: the number of the image that brought its present content
    int64_t m_number = -1;             // of the last image
    std::vector<PlanarFrame> m_frames;
};

} // namespace av
