#pragma once

#include <cstdint>

/// Converts rows of 0xAARRGGBB pixels to the planes of an encoder. Alpha is ignored. Plain loops over `width` pixels
/// that the compiler can vectorize; source and planes must not overlap.
namespace av::pixels
{

/// Splits a row into the planes of 4:4:4 RGB in H.264's order: green, blue, red.
void toGbr(const uint32_t *line, uint8_t *green, uint8_t *blue, uint8_t *red, int width);

/// Converts two rows of even width to Y'CbCr 4:2:0, BT.709, limited range. A chroma sample is the mean of its four
/// pixels, which places it at their center.
void toYuv420(const uint32_t *upper, const uint32_t *lower, uint8_t *upperLuma, uint8_t *lowerLuma, uint8_t *cb,
              uint8_t *cr, int width);

} // namespace av::pixels
