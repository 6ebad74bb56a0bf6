#include "avcodec/x264/PixelConversion.h"

namespace av::pixels
{

namespace
{

// BT.709 from full-range RGB to limited range, scaled by 2^16. Luma coefficients add up to 219/255 and chroma
// coefficients to zero, so white becomes 235 and grays have neutral chroma.
constexpr uint16_t kLumaRed = 11966;
constexpr uint16_t kLumaGreen = 40254;
constexpr uint16_t kLumaBlue = 4064;
constexpr uint16_t kCbRed = 6596;
constexpr uint16_t kCbGreen = 22189;
constexpr uint16_t kCrGreen = 26145;
constexpr uint16_t kCrBlue = 2640;
constexpr uint16_t kChromaOwn = 28785;
static_assert(kCbRed + kCbGreen == kChromaOwn && kCrGreen + kCrBlue == kChromaOwn);

// All values fit into 16 bits, which doubles the pixels per vector instruction: colors and results are fixed-point
// numbers with 8 fractional bits, and the error of three truncated products is 3/256 at most.
constexpr uint16_t kHalf = 128;
constexpr uint16_t kLumaOffset = 16 * 256 + kHalf + 1;
constexpr uint16_t kChromaOffset = 128 * 256 + kHalf;

constexpr uint16_t times(uint16_t value, uint16_t coefficient)
{
    return uint16_t((uint32_t(value) * coefficient) >> 16);
}

constexpr uint16_t red(uint32_t pixel)
{
    return uint16_t(pixel >> 8 & 0xff00);
}
constexpr uint16_t green(uint32_t pixel)
{
    return uint16_t(pixel & 0xff00);
}
constexpr uint16_t blue(uint32_t pixel)
{
    return uint16_t(pixel << 8 & 0xff00);
}

constexpr uint8_t luma(uint32_t pixel)
{
    const uint16_t sum = uint16_t(times(red(pixel), kLumaRed) + times(green(pixel), kLumaGreen) +
                                  times(blue(pixel), kLumaBlue) + kLumaOffset);
    return uint8_t(sum >> 8);
}

void lumaLine(const uint32_t *__restrict line, uint8_t *__restrict result, int width)
{
    for (int x = 0; x < width; ++x)
        result[x] = luma(line[x]);
}

} // namespace

void toGbr(const uint32_t *__restrict line, uint8_t *__restrict green, uint8_t *__restrict blue,
           uint8_t *__restrict red, int width)
{
    for (int x = 0; x < width; ++x) {
        blue[x] = uint8_t(line[x]);
        green[x] = uint8_t(line[x] >> 8);
        red[x] = uint8_t(line[x] >> 16);
    }
}

void toYuv420(const uint32_t *__restrict upper, const uint32_t *__restrict lower, uint8_t *__restrict upperLuma,
              uint8_t *__restrict lowerLuma, uint8_t *__restrict cb, uint8_t *__restrict cr, int width)
{
    lumaLine(upper, upperLuma, width);
    lumaLine(lower, lowerLuma, width);

    constexpr uint32_t kRedBlueMask = 0xff00ff;
    constexpr uint32_t kGreenMask = 0x00ff00;
    for (int i = 0; i < width / 2; ++i) {
        const uint32_t a = upper[2 * i];
        const uint32_t b = upper[2 * i + 1];
        const uint32_t c = lower[2 * i];
        const uint32_t d = lower[2 * i + 1];
        // The sums of four channels take ten bits each.
        const uint32_t rb = (a & kRedBlueMask) + (b & kRedBlueMask) + (c & kRedBlueMask) + (d & kRedBlueMask);
        const uint32_t g = (a & kGreenMask) + (b & kGreenMask) + (c & kGreenMask) + (d & kGreenMask);
        const auto meanRed = uint16_t(rb >> 16 << 6);
        const auto meanGreen = uint16_t(g >> 2);
        const auto meanBlue = uint16_t(rb << 6);
        const auto u =
            uint16_t(times(meanBlue, kChromaOwn) - times(meanRed, kCbRed) - times(meanGreen, kCbGreen) + kChromaOffset);
        const auto v = uint16_t(times(meanRed, kChromaOwn) - times(meanGreen, kCrGreen) - times(meanBlue, kCrBlue) +
                                kChromaOffset);
        cb[i] = uint8_t(u >> 8);
        cr[i] = uint8_t(v >> 8);
    }
}

} // namespace av::pixels
