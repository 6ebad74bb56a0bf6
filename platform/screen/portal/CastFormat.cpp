#include "screen/portal/CastFormat.h"

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/param.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>

namespace kel
{

namespace
{

constexpr uint32_t kMaxSide = 16384;
constexpr uint32_t kMaxFps = 60;
constexpr int kMaxDamageRects = 16;
constexpr int kUsualPointerSide = 64;
constexpr int kMaxPointerSide = 1024;

constexpr int pointerMetaSize(int side)
{
    return int(sizeof(spa_meta_cursor) + sizeof(spa_meta_bitmap)) + side * side * 4;
}

const spa_pod *metaOffer(spa_pod_builder *builder, uint32_t type, int size)
{
    return static_cast<const spa_pod *>(spa_pod_builder_add_object(builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta,
                                                                   SPA_PARAM_META_type, SPA_POD_Id(type),
                                                                   SPA_PARAM_META_size, SPA_POD_Int(size)));
}

const spa_pod *metaOffer(spa_pod_builder *builder, uint32_t type, int usual, int smallest, int largest)
{
    return static_cast<const spa_pod *>(spa_pod_builder_add_object(
        builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type, SPA_POD_Id(type), SPA_PARAM_META_size,
        SPA_POD_CHOICE_RANGE_Int(usual, smallest, largest)));
}

} // namespace

const spa_pod *CastFormatOffer::formats()
{
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, m_memory.data(), uint32_t(m_memory.size()));
    const spa_rectangle usual{1920, 1080};
    const spa_rectangle smallest{1, 1};
    const spa_rectangle largest{kMaxSide, kMaxSide};
    const spa_fraction onChange{0, 1}; // pictures come when something changes, up to the greatest frame rate
    const spa_fraction fastest{kMaxFps, 1};
    // Without modifiers only ordinary memory can be agreed on.
    return static_cast<const spa_pod *>(spa_pod_builder_add_object(
        &builder, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat, SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video),
        SPA_FORMAT_mediaSubtype, SPA_POD_Id(SPA_MEDIA_SUBTYPE_raw), SPA_FORMAT_VIDEO_format,
        SPA_POD_CHOICE_ENUM_Id(5, SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_BGRx, SPA_VIDEO_FORMAT_BGRA,
                               SPA_VIDEO_FORMAT_RGBx, SPA_VIDEO_FORMAT_RGBA),
        SPA_FORMAT_VIDEO_size, SPA_POD_CHOICE_RANGE_Rectangle(&usual, &smallest, &largest), SPA_FORMAT_VIDEO_framerate,
        SPA_POD_CHOICE_RANGE_Fraction(&onChange, &onChange, &fastest), SPA_FORMAT_VIDEO_maxFramerate,
        SPA_POD_CHOICE_RANGE_Fraction(&fastest, &onChange, &fastest)));
}

std::vector<const spa_pod *> CastBufferOffer::parameters()
{
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, m_memory.data(), uint32_t(m_memory.size()));
    constexpr int damageRect = sizeof(spa_meta_region);
    return {static_cast<const spa_pod *>(spa_pod_builder_add_object(
                &builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
                SPA_POD_CHOICE_RANGE_Int(4, 2, 16), SPA_PARAM_BUFFERS_dataType,
                SPA_POD_CHOICE_FLAGS_Int((1 << SPA_DATA_MemFd) | (1 << SPA_DATA_MemPtr)))),
            metaOffer(&builder, SPA_META_Header, sizeof(spa_meta_header)),
            metaOffer(&builder, SPA_META_VideoTransform, sizeof(spa_meta_videotransform)),
            metaOffer(&builder, SPA_META_VideoDamage, damageRect * kMaxDamageRects, damageRect,
                      damageRect * kMaxDamageRects),
            metaOffer(&builder, SPA_META_Cursor, pointerMetaSize(kUsualPointerSide), pointerMetaSize(1),
                      pointerMetaSize(kMaxPointerSide))};
}

spa_video_info_raw videoFormat(const spa_pod *parameter)
{
    spa_video_info_raw format{};
    if (spa_format_video_raw_parse(parameter, &format) < 0 || format.size.width > kMaxSide ||
        format.size.height > kMaxSide)
        return {};
    return format;
}

} // namespace kel
