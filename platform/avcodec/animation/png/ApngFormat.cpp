#include "avcodec/animation/png/ApngFormat.h"

#include "avcodec/animation/png/ApngFrameReader.h"
#include "avcodec/animation/png/PngChunk.h"
#include "avcodec/animation/png/PngFilter.h"

#include <QScopeGuard>

#include <libdeflate.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

namespace av
{

namespace
{

constexpr int kPixelBytes = 3;

/// Compression levels of libdeflate. The first suffices for choosing between encodings and takes a fraction of the
/// time. Filtered rows hardly gain from more than a medium level, unfiltered ones do.
constexpr int kTrialLevel = 1;
constexpr int kFilteredLevel = 7;
constexpr int kUnfilteredLevel = 9;
constexpr int kThoroughLevel = 11;

/// Below this quality the best compression is tried, too.
constexpr int kThoroughBelowQuality = 75;

/// A chunk type that all readers skip. It reserves the space of the tRNS chunk, which states the transparent color.
constexpr char kPlaceholderType[] = "roOm";
constexpr int kTransparencyBytes = 6;

constexpr qint64 kAnimationControlOffset = png::kSignatureBytes + png::kEmptyChunkBytes + 13;
constexpr qint64 kTransparencyOffset = kAnimationControlOffset + png::kEmptyChunkBytes + 8;

QByteArray deflated(const QByteArray &bytes, int level)
{
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), libdeflate_free_compressor);
    if (!compressor)
        throw std::bad_alloc();
    const std::size_t bound = libdeflate_zlib_compress_bound(compressor.get(), std::size_t(bytes.size()));
    QByteArray out(int(bound), Qt::Uninitialized);
    out.resize(int(libdeflate_zlib_compress(compressor.get(), bytes.constData(), std::size_t(bytes.size()), out.data(),
                                            std::size_t(out.size()))));
    return out;
}

/// Replaces transparent pixels by the color that stands for them.
QByteArray rows(const std::vector<QRgb> &pixels, int width, png::Filtering filtering, QRgb transparentColor)
{
    QByteArray bytes(int(pixels.size()) * kPixelBytes, Qt::Uninitialized);
    char *to = bytes.data();
    for (const QRgb pixel : pixels) {
        const QRgb color = FrameDelta::isChanged(pixel) ? pixel : transparentColor;
        for (const int value : {qRed(color), qGreen(color), qBlue(color)})
            *to++ = char(value);
    }
    return png::filteredRows(bytes, width * kPixelBytes, kPixelBytes, filtering);
}

FrameDelta opaqueDelta(const QImage &image, const QRect &rect)
{
    FrameDelta delta{rect, {}};
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y)) + rect.left();
        delta.pixels.insert(delta.pixels.end(), row, row + rect.width());
    }
    return delta;
}

/// Browsers truncate durations to whole milliseconds, so frames of exactly 1/30 s would play too fast.
int unitFor(int fps)
{
    constexpr int kMilliseconds = 1000;
    return fps > 0 && kMilliseconds % fps == 0 ? fps : kMilliseconds;
}

} // namespace

ApngFormat::ApngFormat(int fps, int quality)
    : m_ticksPerSecond(unitFor(fps))
    , m_quality(quality)
{
}

AnimationFormat::Limits ApngFormat::limits() const
{
    return {32767, 1, m_ticksPerSecond, m_ticksPerSecond / 100 + 1, 65535};
}

EncodedFrame ApngFormat::encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const
{
    using png::Filtering;
    struct Method {
        bool hasTransparency;
        Filtering filtering;
    };
    const auto pixelsOf = [](const FrameDelta &of, bool hasTransparency) {
        return hasTransparency ? of.pixelsWithTransparency() : of.opaquePixels();
    };
    const QRgb transparentColor = delta.unusedColor.value_or(0);
    const FrameDelta sample = delta.sample();
    Method best{false, Filtering::None};
    int minSize = std::numeric_limits<int>::max();
    for (const bool hasTransparency : {false, true}) {
        if (hasTransparency && !delta.unusedColor)
            break;
        const std::vector<QRgb> pixels = pixelsOf(sample, hasTransparency);
        if (hasTransparency && std::all_of(pixels.begin(), pixels.end(), FrameDelta::isChanged))
            break;
        for (const Filtering filtering : {Filtering::None, Filtering::Adaptive}) {
            if (cancelled)
                return {};
            const int size =
                deflated(rows(pixels, sample.rect.width(), filtering, transparentColor), kTrialLevel).size();
            if (size < minSize) {
                minSize = size;
                best = {hasTransparency, filtering};
            }
        }
    }
    const QByteArray filtered =
        rows(pixelsOf(delta, best.hasTransparency), delta.rect.width(), best.filtering, transparentColor);
    if (cancelled)
        return {};
    QByteArray data = deflated(filtered, best.filtering == Filtering::None ? kUnfilteredLevel : kFilteredLevel);
    if (m_quality < kThoroughBelowQuality && !cancelled) { // not always smaller
        const QByteArray smaller = deflated(filtered, kThoroughLevel);
        if (smaller.size() < data.size())
            data = smaller;
    }
    return {delta.rect, best.hasTransparency, data, delta.unusedColor};
}

bool ApngFormat::writeHeader(OutputFile &file, QSize size, int plays)
{
    m_plays = plays;
    return file.write(png::kSignature + png::header(size) + animationControl() +
                      png::chunk(kPlaceholderType, QByteArray(kTransparencyBytes, '\0')));
}

/// The number of frames is not final until the end.
QByteArray ApngFormat::animationControl() const
{
    return png::chunk("acTL", png::bigEndian(m_frames) + png::bigEndian(quint32(m_plays)));
}

/// Rewrites the file without transparency if the frame uses the color that stands for it.
bool ApngFormat::prepareToWrite(OutputFile &file, const EncodedFrame &frame, const std::atomic<bool> &cancelled)
{
    if (!m_transparentColor || frame.unusedColor == m_transparentColor)
        return true;
    OutputFile copy;
    if (!copy.open(file.path() + QLatin1String(".opaque")))
        return file.fail(copy.errorString());
    const auto cleanUp = qScopeGuard([&copy] { copy.remove(); }); // no effect after a successful replaceWith()
    if (!copyWithoutTransparency(file.path(), copy, cancelled))
        return file.fail(copy.errorString());
    if (!file.replaceWith(copy))
        return false;
    m_transparentColor.reset();
    return true;
}

bool ApngFormat::copyWithoutTransparency(const QString &from, OutputFile &to, const std::atomic<bool> &cancelled) const
{
    ApngFormat format(m_ticksPerSecond, m_quality);
    ApngFrameReader reader(from);
    ApngFrameReader::Frame frame;
    while (format.m_frames < m_frames) {
        if (!reader.next(&frame))
            return to.fail(QStringLiteral("Cannot read %1 back").arg(from));
        if (format.m_frames == 0 && !format.writeHeader(to, reader.image().size(), m_plays))
            return false;
        if (frame.encoded.hasTransparentPixels)
            frame.encoded = format.encode(opaqueDelta(reader.image(), frame.encoded.rect), cancelled);
        if (cancelled)
            return to.fail(QStringLiteral("Aborted"));
        if (!format.writeFrame(to, frame.encoded, frame.ticks))
            return false;
    }
    return true;
}

bool ApngFormat::writeFrame(OutputFile &file, const EncodedFrame &frame, int ticks)
{
    if (frame.hasTransparentPixels && !m_transparentColor) {
        m_transparentColor = frame.unusedColor;
        if (!file.overwrite(kTransparencyOffset, png::transparency(*m_transparentColor)))
            return false;
    }
    constexpr char kDisposeNone = 0;
    QByteArray control = png::bigEndian(m_sequence++);
    for (const int value : {frame.rect.width(), frame.rect.height(), frame.rect.x(), frame.rect.y()})
        control += png::bigEndian(quint32(value));
    control += png::bigEndian(quint16(ticks)) + png::bigEndian(quint16(m_ticksPerSecond));
    control.append(kDisposeNone).append(char(frame.hasTransparentPixels));
    const QByteArray data =
        m_frames == 0 ? png::chunk("IDAT", frame.data) : png::chunk("fdAT", png::bigEndian(m_sequence++) + frame.data);
    if (!file.write(png::chunk("fcTL", control)) || !file.write(data))
        return false;
    ++m_frames;
    return true;
}

bool ApngFormat::writeTrailer(OutputFile &file)
{
    return file.write(png::chunk("IEND", {})) && file.overwrite(kAnimationControlOffset, animationControl());
}

} // namespace av
