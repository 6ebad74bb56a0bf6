#include "audio/processing/FloatSamples.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <limits>

namespace kel
{

namespace
{

constexpr int kOffset8 = 128; // of unsigned samples

template <typename Integer>
Integer toInteger(float sample)
{
    using Limits = std::numeric_limits<Integer>;
    const double scaled = std::round(double(sample) * -double(Limits::min()));
    return Integer(std::clamp(scaled, double(Limits::min()), double(Limits::max())));
}

template <typename Integer>
float toFloat(Integer sample)
{
    return float(double(sample) / -double(std::numeric_limits<Integer>::min()));
}

} // namespace

void FloatSamples::read(const char *bytes, qint64 count, float *samples) const
{
    for (qint64 i = 0; i < count; ++i) {
        if (isFloat) {
            const auto sample = qFromLittleEndian<float>(bytes + i * 4);
            samples[i] = std::isfinite(sample) ? sample : 0.0F;
        } else if (bits == 8) {
            samples[i] = toFloat(qint8(int(quint8(bytes[i])) - kOffset8));
        } else if (bits == 16) {
            samples[i] = toFloat(qFromLittleEndian<qint16>(bytes + i * 2));
        } else {
            samples[i] = toFloat(qFromLittleEndian<qint32>(bytes + i * 4));
        }
    }
}

void FloatSamples::write(const float *samples, qint64 count, char *bytes) const
{
    for (qint64 i = 0; i < count; ++i) {
        if (isFloat)
            qToLittleEndian(samples[i], bytes + i * 4);
        else if (bits == 8)
            bytes[i] = char(int(toInteger<qint8>(samples[i])) + kOffset8);
        else if (bits == 16)
            qToLittleEndian(toInteger<qint16>(samples[i]), bytes + i * 2);
        else
            qToLittleEndian(toInteger<qint32>(samples[i]), bytes + i * 4);
    }
}

} // namespace kel
