#pragma once

#include "coreaudio/sdk/Com.h"

constexpr WORD WAVE_FORMAT_PCM = 1;
constexpr WORD WAVE_FORMAT_IEEE_FLOAT = 3;
constexpr WORD WAVE_FORMAT_EXTENSIBLE = 0xFFFE;

#pragma pack(push, 1)
struct WAVEFORMATEX {
    WORD wFormatTag;
    WORD nChannels;
    DWORD nSamplesPerSec;
    DWORD nAvgBytesPerSec;
    WORD nBlockAlign;
    WORD wBitsPerSample;
    WORD cbSize; ///< bytes that follow the structure
};

struct WAVEFORMATEXTENSIBLE {
    WAVEFORMATEX Format;
    union {
        WORD wValidBitsPerSample;
        WORD wSamplesPerBlock;
        WORD wReserved;
    } Samples;
    DWORD dwChannelMask;
    GUID SubFormat;
};
#pragma pack(pop)

static_assert(sizeof(WAVEFORMATEX) == 18);
static_assert(sizeof(WAVEFORMATEXTENSIBLE) == 40);

inline constexpr GUID KSDATAFORMAT_SUBTYPE_PCM{
    0x00000001, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
inline constexpr GUID KSDATAFORMAT_SUBTYPE_IEEE_FLOAT{
    0x00000003, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
