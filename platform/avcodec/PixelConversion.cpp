#include "avcodec/PixelConversion.h"

namespace pixels
{

namespace
{

// BT.709 from full-range RGB to limited range, scaled by 2^16. Luma coefficients add up to exactly 219/255 and chroma
// coefficients to zero, so white is 235 and greys have no colour.
constexpr int kShift = 16;
constexpr int kLumaRed = 11966;
constexpr int kLumaGreen = 40254;
constexpr int kLumaBlue = 4064;
constexpr int kCbRed = -6596;
constexpr int kCbGreen = -22189;
constexpr int kCrGreen = -26145;
constexpr int kCrBlue = -2640;
constexpr int kChromaOwn = 28785;
static_assert(kCbRed + kCbGreen + kChromaOwn == 0 && kCrGreen + kCrBlue + kChromaOwn == 0);

constexpr int red(uint32_t pixel)
{
    return int(pixel >> 16 & 0xff);
}
constexpr int green(uint32_t pixel)
{
    return int(pixel >> 8 & 0xff);
}
constexpr int blue(uint32_t pixel)
{
    return int(pixel & 0xff);
}

constexpr uint8_t luma(uint32_t pixel)
{
    constexpr int offset = (16 << kShift) + (1 << (kShift - 1));
    return uint8_t((kLumaRed * red(pixel) + kLumaGreen * green(pixel) + kLumaBlue * blue(pixel) + offset) >> kShift);
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
    for (int x = 0; x < width; ++x) {
        upperLuma[x] = luma(upper[x]);
        lowerLuma[x] = luma(lower[x]);
    }
    // The sums of four pixels carry two bits more.
    constexpr int shift = kShift + 2;
    constexpr int offset = (128 << shift) + (1 << (shift - 1));
    for (int i = 0; i < width / 2; ++i) {
        const uint32_t a = upper[2 * i];
        const uint32_t b = upper[2 * i + 1];
        const uint32_t c = lower[2 * i];
        const uint32_t d = lower[2 * i + 1];
        const int r = red(a) + red(b) + red(c) + red(d);
        const int g = green(a) + green(b) + green(c) + green(d);
        const int bl = blue(a) + blue(b) + blue(c) + blue(d);
        cb[i] = uint8_t((kCbRed * r + kCbGreen * g + kChromaOwn * bl + offset) >> shift);
        cr[i] = uint8_t((kChromaOwn * r + kCrGreen * g + kCrBlue * bl + offset) >> shift);
    }
}

} // namespace pixels
