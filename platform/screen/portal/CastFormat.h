#pragma once

#include <spa/param/video/raw.h>
#include <spa/pod/pod.h>

#include <array>
#include <cstdint>
#include <vector>

namespace kel
{

/// The formats of pictures that a screen cast may have. Valid while this object exists.
class CastFormatOffer
{
public:
    const spa_pod *formats();

private:
    std::array<uint8_t, 1024> m_memory{};
};

/// The buffers and metadata that are wanted of a screen cast. Valid while this object exists.
class CastBufferOffer
{
public:
    std::vector<const spa_pod *> parameters();

private:
    std::array<uint8_t, 2048> m_memory{};
};

/// The format that has been agreed on; without a size where it cannot be understood.
spa_video_info_raw videoFormat(const spa_pod *parameter);

} // namespace kel
