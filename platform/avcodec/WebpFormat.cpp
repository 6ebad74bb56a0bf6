#include "avcodec/WebpFormat.h"

#include <QtEndian>

#include <webp/encode.h>

#include <algorithm>

namespace
{

constexpr int Lossless = 100; // quality

/// The library's qualities above 75 make files much larger and hardly better, so that is what 90 means here.
constexpr float LibraryQuality = 75.0f / 90;

/// More effort takes several times as long for some hundredths of the bytes.
constexpr int LosslessMethod = 1;
constexpr float LosslessEffort = 75;
constexpr int LossyMethod = 4;

/// A sample finds fewer repetitions than the whole picture, which makes lossless look worse by up to so much.
constexpr double MaxSampleBias = 1.5;

constexpr int RiffHeaderBytes = 12; // "RIFF", size, "WEBP"
constexpr int FrameHeaderBytes = 16;
constexpr int ChunkHeaderBytes = 8;
constexpr qint64 SizeOffset = 4;
constexpr qint64 FlagsOffset = 20;
constexpr char AnimationFlag = 0x02;
constexpr char AlphaFlag = 0x10;
constexpr char ReplacesPixels = 0x02;

/// The low `bytes` bytes.
QByteArray littleEndian(quint32 value, int bytes)
{
    QByteArray all(4, Qt::Uninitialized);
    qToLittleEndian(value, all.data());
    return all.left(bytes);
}

QByteArray chunk(const char *type, const QByteArray &data)
{
    return type + littleEndian(quint32(data.size()), 4) + data;
}

int goOnUnlessCancelled(int, const WebPPicture *picture)
{
    return !static_cast<const std::atomic<bool> *>(picture->user_data)->load();
}

} // namespace

WebpFormat::WebpFormat(int quality, qint64 largestFile)
    : m_quality(std::clamp(quality, 0, Lossless))
    , m_largestFile(largestFile)
{
}

AnimationFormat::Limits WebpFormat::limits() const
{
    return {WEBP_MAX_DIMENSION, 2, 1000, 11, 0xffffff};
}

EncodedFrame WebpFormat::encode(const PictureDelta &delta, const std::atomic<bool> &cancelled) const
{
    const auto encoded = [&](Way way) {
        return EncodedFrame{delta.rect, way == Way::Lossless, compressed(delta, way, cancelled)};
    };
    if (m_quality == Lossless)
        return encoded(Way::Lossless);
    const PictureDelta sample = delta.sample();
    if (sample.pixels.size() < delta.pixels.size()) { // a trial costs less than to do it both ways
        const int lossless = compressed(sample, Way::Lossless, cancelled).size();
        const int lossy = compressed(sample, Way::Lossy, cancelled).size();
        if (lossless <= lossy)
            return encoded(Way::Lossless);
        if (lossless > MaxSampleBias * lossy)
            return encoded(Way::Lossy);
    }
    const EncodedFrame exact = encoded(Way::Lossless);
    const EncodedFrame approximate = encoded(Way::Lossy);
    return exact.data.size() <= approximate.data.size() ? exact : approximate;
}

/// The chunks of a still picture; empty when it is cancelled or fails.
QByteArray WebpFormat::compressed(const PictureDelta &delta, Way way, const std::atomic<bool> &cancelled) const
{
    WebPConfig config;
    WebPPicture picture;
    if (!WebPConfigInit(&config) || !WebPPictureInit(&picture))
        return {};
    config.lossless = way == Way::Lossless;
    config.method = config.lossless ? LosslessMethod : LossyMethod;
    config.quality = config.lossless ? LosslessEffort : LibraryQuality * float(m_quality);

    std::vector<QRgb> pixels = config.lossless ? delta.pixelsWithGaps() : delta.opaquePixels();
    picture.use_argb = 1;
    picture.width = delta.rect.width();
    picture.height = delta.rect.height();
    picture.argb = pixels.data(); // stays ours
    picture.argb_stride = picture.width;
    picture.progress_hook = goOnUnlessCancelled;
    picture.user_data = const_cast<std::atomic<bool> *>(&cancelled);
    WebPMemoryWriter writer;
    WebPMemoryWriterInit(&writer);
    picture.writer = WebPMemoryWrite;
    picture.custom_ptr = &writer;

    QByteArray chunks;
    if (WebPEncode(&config, &picture))
        chunks = QByteArray(reinterpret_cast<const char *>(writer.mem), int(writer.size)).mid(RiffHeaderBytes);
    WebPMemoryWriterClear(&writer);
    WebPPictureFree(&picture);
    return chunks;
}

bool WebpFormat::writeHeader(OutputFile &file, QSize size, int plays)
{
    QByteArray canvas(4, '\0'); // the flags come at the end
    canvas += littleEndian(quint32(size.width() - 1), 3) + littleEndian(quint32(size.height() - 1), 3);
    const QByteArray background(4, '\0');
    return file.write("RIFF" + littleEndian(0, 4) + "WEBP" + chunk("VP8X", canvas) +
                      chunk("ANIM", background + littleEndian(quint32(plays), 2)));
}

bool WebpFormat::writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks)
{
    if (file.size() + ChunkHeaderBytes + FrameHeaderBytes + picture.data.size() > m_largestFile)
        return file.fail(QStringLiteral("A WebP file cannot be larger than 4 GiB"));
    const int values[]{picture.rect.x() / 2, picture.rect.y() / 2, picture.rect.width() - 1, picture.rect.height() - 1,
                       ticks};
    QByteArray frame;
    for (const int value : values)
        frame += littleEndian(quint32(value), 3);
    frame += picture.keepsPixels ? '\0' : ReplacesPixels;
    m_hasAlpha = m_hasAlpha || picture.keepsPixels;
    return file.write(chunk("ANMF", frame + picture.data));
}

bool WebpFormat::writeTrailer(OutputFile &file)
{
    const char flags = char(AnimationFlag | (m_hasAlpha ? AlphaFlag : 0));
    return file.overwrite(SizeOffset, littleEndian(quint32(file.size() - 8), 4)) &&
           file.overwrite(FlagsOffset, QByteArray(1, flags));
}
