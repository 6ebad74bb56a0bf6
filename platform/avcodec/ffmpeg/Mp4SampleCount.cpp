#include "avcodec/ffmpeg/Mp4SampleCount.h"

#include <QByteArray>
#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <limits>

namespace av
{

namespace
{

constexpr int kMaxDepth = 8;
constexpr qint64 kHeaderSize = 8;
constexpr qint64 kLargeHeaderSize = 16;
constexpr qint64 kTableHeadSize = 12; // of the content; up to and including the count
constexpr qint64 kUncountable = std::numeric_limits<qint64>::max();

// Boxes that consist of boxes.
constexpr std::array<const char *, 15> kContainers{"moov", "trak", "mdia", "minf", "stbl", "moof", "traf", "mvex",
                                                   "udta", "edts", "dinf", "sinf", "schi", "wave", "tref"};

bool isContainer(const QByteArray &type)
{
    return std::any_of(kContainers.begin(), kContainers.end(), [&](const char *each) { return type == each; });
}

QByteArray readAt(QIODevice &file, qint64 position, qint64 size)
{
    return file.seek(position) ? file.read(size) : QByteArray();
}

/// The number at `offset`; 0 beyond the end.
quint32 numberAt(const QByteArray &bytes, qint64 offset)
{
    return bytes.size() >= offset + 4 ? qFromBigEndian<quint32>(bytes.constData() + offset) : 0;
}

qint64 samplesBetween(QIODevice &file, qint64 begin, qint64 end, int depth)
{
    qint64 samples = 0;
    while (end - begin >= kHeaderSize) {
        const QByteArray head = readAt(file, begin, kLargeHeaderSize + kTableHeadSize);
        const QByteArray type = head.mid(4, 4);
        quint64 size = numberAt(head, 0);
        qint64 headerSize = kHeaderSize;
        if (size == 0) { // the last one
            size = quint64(end - begin);
        } else if (size == 1) {
            headerSize = kLargeHeaderSize;
            size = head.size() >= kLargeHeaderSize ? qFromBigEndian<quint64>(head.constData() + kHeaderSize) : 0;
        }
        if (size < quint64(headerSize))
            break;
        const qint64 next = begin + qint64(std::min(size, quint64(end - begin)));
        if (type == "cmov")
            return kUncountable;
        if (type == "trun")
            samples += numberAt(head, headerSize + 4);
        else if (type == "stsz" || type == "stz2")
            samples += numberAt(head, headerSize + 8);
        else if (isContainer(type) && depth < kMaxDepth) {
            const qint64 inside = samplesBetween(file, begin + headerSize, next, depth + 1);
            if (inside == kUncountable)
                return inside;
            samples += inside;
        }
        begin = next;
    }
    return samples;
}

} // namespace

qint64 statedMp4Samples(QIODevice &file)
{
    return samplesBetween(file, 0, file.size(), 0);
}

} // namespace av
