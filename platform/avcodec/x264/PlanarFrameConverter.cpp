#include "avcodec/x264/PlanarFrameConverter.h"

#include "avcodec/RgbPixels.h"
#include "avcodec/x264/PixelConversion.h"

#include <algorithm>
#include <cstring>

namespace av
{

namespace
{

constexpr int kBlock = 16; // a macroblock's width and height

int blocks(int length)
{
    return (length + kBlock - 1) / kBlock;
}

QSize evenSize(const QSize &size)
{
    return {(size.width() + 1) & ~1, (size.height() + 1) & ~1};
}

/// Calls run(first, end) for each run of consecutive blocks for which isIn(block) holds.
template <typename Predicate, typename Run>
void forEachRun(int count, Predicate isIn, Run run)
{
    for (int first = 0; first < count; ++first) {
        if (!isIn(first))
            continue;
        int end = first + 1;
        while (end < count && isIn(end))
            ++end;
        run(first, end);
        first = end;
    }
}

} // namespace

PlanarFrameConverter::PlanarFrameConverter(const QSize &imageSize, Layout layout, int capacity)
    : m_imageSize(imageSize)
    , m_frameSize(layout == Layout::Bt709Yuv420 ? evenSize(imageSize) : imageSize)
    , m_layout(layout)
    , m_blockColumns(blocks(imageSize.width()))
    , m_blockRows(blocks(imageSize.height()))
    , m_referenceStride(m_blockColumns * kBlock)
    , m_reference(std::size_t(m_referenceStride) * m_blockRows * kBlock)
    , m_changedAt(std::size_t(m_blockColumns) * m_blockRows, -1)
    , m_frames(std::size_t(capacity))
{
}

PlanarFrame *PlanarFrameConverter::convert(const QImage &image)
{
    const auto frame = std::find_if(m_frames.begin(), m_frames.end(),
                                    [](const PlanarFrame &f) { return !f.m_inUse.load(std::memory_order_acquire); });
    if (frame == m_frames.end())
        return nullptr;
    frame->m_inUse.store(true, std::memory_order_relaxed);
    if (frame->unchanged.empty())
        allocate(*frame);

    const QImage source = withRgbPixels(image);
    ++m_number;
    // Row by row, so that what is compared, copied and converted stays in the CPU cache.
    for (int row = 0; row < m_blockRows; ++row) {
        findChanges(source, row);
        convertRow(*frame, row);
    }
    frame->m_number = m_number;
    return &*frame;
}

void PlanarFrameConverter::release(PlanarFrame *frame)
{
    frame->m_inUse.store(false, std::memory_order_release);
}

void PlanarFrameConverter::findChanges(const QImage &image, int blockRow)
{
    int64_t *changedAt = m_changedAt.data() + std::size_t(blockRow) * m_blockColumns;
    const int top = blockRow * kBlock;
    const int bottom = std::min(top + kBlock, m_imageSize.height());
    const int width = m_imageSize.width();
    if (m_number == 0)
        std::fill_n(changedAt, m_blockColumns, m_number);
    for (int y = top; y < bottom; ++y) {
        const auto *now = reinterpret_cast<const uint32_t *>(image.constScanLine(y));
        const uint32_t *before = referenceLine(y);
        if (std::memcmp(now, before, std::size_t(width) * sizeof *now) == 0)
            continue;
        for (int block = 0; block < m_blockColumns; ++block) {
            const int x = block * kBlock;
            const std::size_t length = std::size_t(std::min(kBlock, width - x)) * sizeof *now;
            if (changedAt[block] != m_number && std::memcmp(now + x, before + x, length) != 0)
                changedAt[block] = m_number;
        }
    }
    bool anyChange = false;
    forEachRun(
        m_blockColumns, [&](int block) { return changedAt[block] == m_number; },
        [&](int first, int end) {
            copyRun(image, blockRow, first, end);
            anyChange = true;
        });
    if (anyChange)
        padEdges(blockRow);
}

void PlanarFrameConverter::copyRun(const QImage &image, int blockRow, int firstBlock, int endBlock)
{
    const int bottom = std::min((blockRow + 1) * kBlock, m_imageSize.height());
    const int x = firstBlock * kBlock;
    const int width = std::min(endBlock * kBlock, m_imageSize.width()) - x;
    for (int y = blockRow * kBlock; y < bottom; ++y)
        std::memcpy(referenceLine(y) + x, reinterpret_cast<const uint32_t *>(image.constScanLine(y)) + x,
                    std::size_t(width) * sizeof(uint32_t));
}

void PlanarFrameConverter::padEdges(int blockRow)
{
    const int bottom = (blockRow + 1) * kBlock;
    const int lastLine = std::min(bottom, m_imageSize.height()) - 1;
    const int width = m_imageSize.width();
    if (width < m_referenceStride)
        for (int y = blockRow * kBlock; y <= lastLine; ++y)
            std::fill(referenceLine(y) + width, referenceLine(y) + m_referenceStride, referenceLine(y)[width - 1]);
    for (int y = lastLine + 1; y < bottom; ++y)
        std::copy_n(referenceLine(lastLine), m_referenceStride, referenceLine(y));
}

void PlanarFrameConverter::convertRow(PlanarFrame &frame, int blockRow)
{
    const int64_t *changedAt = m_changedAt.data() + std::size_t(blockRow) * m_blockColumns;
    uint8_t *unchanged = frame.unchanged.data() + std::size_t(blockRow) * m_blockColumns;
    std::transform(changedAt, changedAt + m_blockColumns, unchanged,
                   [this](int64_t number) { return uint8_t(number != m_number); });
    forEachRun(
        m_blockColumns, [&](int block) { return changedAt[block] > frame.m_number; },
        [&](int first, int end) { convertRun(frame, blockRow, first, end); });
}

void PlanarFrameConverter::convertRun(PlanarFrame &frame, int blockRow, int firstBlock, int endBlock)
{
    const int x = firstBlock * kBlock;
    const int width = (endBlock - firstBlock) * kBlock;
    const auto at = [&frame](int plane, int column, int row) {
        PlanarFrame::Plane &p = frame.planes[std::size_t(plane)];
        return p.samples.data() + std::size_t(row) * p.stride + column;
    };
    const int step = m_layout == Layout::Gbr444 ? 1 : 2;
    for (int y = blockRow * kBlock; y < (blockRow + 1) * kBlock; y += step) {
        if (m_layout == Layout::Gbr444)
            pixels::toGbr(referenceLine(y) + x, at(0, x, y), at(1, x, y), at(2, x, y), width);
        else
            pixels::toYuv420(referenceLine(y) + x, referenceLine(y + 1) + x, at(0, x, y), at(0, x, y + 1),
                             at(1, x / 2, y / 2), at(2, x / 2, y / 2), width);
    }
}

void PlanarFrameConverter::allocate(PlanarFrame &frame) const
{
    const int lines = m_blockRows * kBlock;
    for (std::size_t i = 0; i < frame.planes.size(); ++i) {
        const int divisor = i > 0 && m_layout == Layout::Bt709Yuv420 ? 2 : 1;
        frame.planes[i].stride = m_referenceStride / divisor;
        frame.planes[i].samples.resize(std::size_t(frame.planes[i].stride) * (lines / divisor));
    }
    frame.unchanged.resize(m_changedAt.size());
}

} // namespace av
