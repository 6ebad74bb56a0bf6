#pragma once

#include "recording/wav/WavHeader.h"

#include <QString>
#include <QtGlobal>

namespace kel
{

/// Turns the samples of a file into such as all readers of sound understand: integers of 8, 16 or 32 bits and floats of
/// 32 bits stay, others become floats of 32 bits. A plain value.
class SampleConverter
{
public:
    /// For samples as `stored` describes them. Null `problem` on success, otherwise why they cannot be played.
    static SampleConverter from(const WavHeader &stored, bool integers32AsFloats, QString *problem);

    /// The header of the converted sound, without sizes.
    WavHeader header(const WavHeader &stored) const;

    bool isNeeded() const { return m_kind != Kind::Copy; }
    int storedBytes() const { return m_storedBytes; } ///< of a sample in the file
    int bytes() const { return isNeeded() ? 4 : m_storedBytes; }

    void convert(const char *stored, qint64 count, char *out) const;

private:
    enum class Kind { Copy, Int24, Int32, Float64 };

    Kind m_kind = Kind::Copy;
    int m_storedBytes = 1;
};

} // namespace kel
