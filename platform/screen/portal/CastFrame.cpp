#include "screen/portal/CastFrame.h"

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/video/raw.h>

namespace kel
{

namespace
{

constexpr int kBytesPerPixel = 4;
constexpr uint32_t kMaxPointerSide = 1024;

/// The metadata of a kind, at least as large as its structure; null without.
template <typename Meta>
const Meta *findMeta(const spa_buffer &buffer, uint32_t type)
{
    return static_cast<const Meta *>(spa_buffer_find_meta_data(&buffer, type, sizeof(Meta)));
}

QImage::Format pictureFormat(uint32_t format)
{
    switch (format) {
    case SPA_VIDEO_FORMAT_BGRx:
    case SPA_VIDEO_FORMAT_BGRA:
        return QImage::Format_RGB32;
    case SPA_VIDEO_FORMAT_RGBx:
    case SPA_VIDEO_FORMAT_RGBA:
        return QImage::Format_RGBX8888;
    default:
        return QImage::Format_Invalid;
    }
}

QImage::Format pointerFormat(uint32_t format)
{
    switch (format) {
    case SPA_VIDEO_FORMAT_BGRA:
        return QImage::Format_ARGB32_Premultiplied;
    case SPA_VIDEO_FORMAT_RGBA:
        return QImage::Format_RGBA8888_Premultiplied;
    default:
        return QImage::Format_Invalid;
    }
}

QImage pictureOf(const spa_buffer &buffer, const spa_video_info_raw &format)
{
    if (buffer.n_datas == 0 || format.size.width == 0 || format.size.height == 0)
        return {};
    const spa_data &data = buffer.datas[0];
    const spa_chunk *chunk = data.chunk;
    const auto *header = findMeta<spa_meta_header>(buffer, SPA_META_Header);
    const bool isCorrupted =
        (header && (header->flags & SPA_META_HEADER_FLAG_CORRUPTED)) || (chunk->flags & SPA_CHUNK_FLAG_CORRUPTED);
    // A buffer that brings only the pointer has an empty or a corrupted picture.
    if (!data.data || chunk->size == 0 || isCorrupted || pictureFormat(format.format) == QImage::Format_Invalid)
        return {};
    const uint64_t line = uint64_t(format.size.width) * kBytesPerPixel;
    const uint64_t stride = chunk->stride == 0 ? line : uint64_t(std::max(chunk->stride, 0));
    if (stride < line || chunk->offset + stride * (format.size.height - 1) + line > data.maxsize)
        return {};
    return QImage(static_cast<const uchar *>(data.data) + chunk->offset, int(format.size.width),
                  int(format.size.height), int(stride), pictureFormat(format.format));
}

/// By how much the compositor has turned the picture, to be undone.
QTransform uprightTransform(const spa_buffer &buffer)
{
    const auto *meta = findMeta<spa_meta_videotransform>(buffer, SPA_META_VideoTransform);
    QTransform transform;
    if (!meta || meta->transform == SPA_META_TRANSFORMATION_None ||
        meta->transform > SPA_META_TRANSFORMATION_Flipped270)
        return transform;
    transform.rotate(-90.0 * (meta->transform & 3));
    if (meta->transform >= SPA_META_TRANSFORMATION_Flipped)
        transform.scale(-1, 1);
    return transform;
}

/// Nothing without a list, and for an empty one, which compositors do not agree on.
std::optional<QRegion> damageOf(const spa_buffer &buffer)
{
    const spa_meta *meta = spa_buffer_find_meta(&buffer, SPA_META_VideoDamage);
    if (!meta)
        return {};
    QRegion damage;
    const auto *regions = static_cast<const spa_meta_region *>(meta->data);
    for (std::size_t i = 0; i < meta->size / sizeof(spa_meta_region) && spa_meta_region_is_valid(&regions[i]); ++i) {
        const spa_region &region = regions[i].region;
        damage += QRect(region.position.x, region.position.y, int(region.size.width), int(region.size.height));
    }
    if (damage.isEmpty())
        return {};
    return damage;
}

/// A copy of the pointer's image; null when it is empty or damaged.
QImage shapeOf(const spa_meta &meta, uint32_t bitmapOffset)
{
    const auto *bitmap = static_cast<const spa_meta_bitmap *>(SPA_PTROFF(meta.data, bitmapOffset, void));
    const QImage::Format format = pointerFormat(bitmap->format);
    const uint64_t width = bitmap->size.width;
    const uint64_t height = bitmap->size.height;
    if (format == QImage::Format_Invalid || bitmap->offset < sizeof(spa_meta_bitmap) || width == 0 || height == 0 ||
        width > kMaxPointerSide || height > kMaxPointerSide || bitmap->stride < int64_t(width) * kBytesPerPixel)
        return {};
    const uint64_t end =
        bitmapOffset + bitmap->offset + uint64_t(bitmap->stride) * (height - 1) + width * kBytesPerPixel;
    if (end > meta.size)
        return {};
    const QImage view(SPA_PTROFF(bitmap, bitmap->offset, const uchar), int(width), int(height), bitmap->stride, format);
    return view.convertToFormat(QImage::Format_ARGB32_Premultiplied).copy();
}

std::optional<CastFrame::Pointer> pointerOf(const spa_buffer &buffer)
{
    const spa_meta *meta = spa_buffer_find_meta(&buffer, SPA_META_Cursor);
    if (!meta || meta->size < sizeof(spa_meta_cursor))
        return {};
    const auto *cursor = static_cast<const spa_meta_cursor *>(meta->data);
    CastFrame::Pointer pointer;
    pointer.isOnStream = spa_meta_cursor_is_valid(cursor);
    pointer.position = {cursor->position.x, cursor->position.y};
    const uint32_t offset = cursor->bitmap_offset;
    if (pointer.isOnStream && offset >= sizeof(spa_meta_cursor) &&
        uint64_t(offset) + sizeof(spa_meta_bitmap) <= meta->size) {
        pointer.shape = shapeOf(*meta, offset);
        pointer.hotspot = {cursor->hotspot.x, cursor->hotspot.y};
    }
    return pointer;
}

} // namespace

CastFrame readCastFrame(const spa_buffer &buffer, const spa_video_info_raw &format)
{
    CastFrame frame;
    frame.picture = pictureOf(buffer, format);
    frame.toUpright = uprightTransform(buffer);
    frame.damage = damageOf(buffer);
    frame.pointer = pointerOf(buffer);
    return frame;
}

} // namespace kel
