#include "avcodec/audio/MixContainer.h"

#include <QFileInfo>

namespace av
{

namespace
{

constexpr MixContainer kContainers[] = {
    {"mp4", "mp4", AV_CODEC_ID_AAC, true},        {"m4v", "mp4", AV_CODEC_ID_AAC, true},
    {"mov", "mov", AV_CODEC_ID_AAC, true},        {"mkv", "matroska", AV_CODEC_ID_AAC, true},
    {"m4a", "ipod", AV_CODEC_ID_AAC, false},      {"mka", "matroska", AV_CODEC_ID_AAC, false},
    {"aac", "adts", AV_CODEC_ID_AAC, false},      {"mp3", "mp3", AV_CODEC_ID_MP3, false},
    {"wav", "wav", AV_CODEC_ID_PCM_S16LE, false}, {"flac", "flac", AV_CODEC_ID_FLAC, false},
    {"ogg", "ogg", AV_CODEC_ID_VORBIS, false},    {"oga", "ogg", AV_CODEC_ID_VORBIS, false},
    {"opus", "opus", AV_CODEC_ID_OPUS, false},
};

} // namespace

const MixContainer *MixContainer::ofFile(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    for (const MixContainer &container : kContainers) {
        if (suffix == QLatin1String(container.suffix))
            return &container;
    }
    return nullptr;
}

} // namespace av
