#pragma once

#include <QtGlobal>

namespace kel
{

/// Converts samples of a WAV file, in one of the forms that RecordedSound provides, to floats from -1 to 1 and back.
struct FloatSamples {
    int bits = 16; ///< 8 (unsigned), 16 or 32
    bool isFloat = false;

    /// Samples that are not finite become 0.
    void read(const char *bytes, qint64 count, float *samples) const;
    /// Integers are clamped to their range.
    void write(const float *samples, qint64 count, char *bytes) const;
};

} // namespace kel
