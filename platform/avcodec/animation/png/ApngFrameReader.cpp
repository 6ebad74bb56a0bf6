#include "avcodec/animation/png/ApngFrameReader.h"

#include "avcodec/animation/png/PngChunk.h"

#include <QPainter>
#include <QtEndian>

namespace av
{

namespace
{

template <typename Integer>
int numberAt(const QByteArray &data, int offset)
{
    return int(qFromBigEndian<Integer>(data.constData() + offset));
}

} // namespace

ApngFrameReader::ApngFrameReader(const QString &path)
    : m_file(path)
{
    if (m_file.open(QIODevice::ReadOnly))
        m_file.seek(png::kSignatureBytes);
}

bool ApngFrameReader::next(Frame *frame)
{
    QByteArray type, data;
    while (readChunk(&type, &data)) {
        if (type == "IHDR") {
            m_image = QImage(numberAt<quint32>(data, 0), numberAt<quint32>(data, 4), QImage::Format_RGB32);
        } else if (type == "tRNS") {
            m_transparency = png::chunk("tRNS", data);
        } else if (type == "fcTL") {
            frame->encoded.rect = QRect(numberAt<quint32>(data, 12), numberAt<quint32>(data, 16),
                                        numberAt<quint32>(data, 4), numberAt<quint32>(data, 8));
            frame->ticks = numberAt<quint16>(data, 20);
            frame->encoded.hasTransparentPixels = data.at(25);
        } else if (type == "IDAT" || type == "fdAT") {
            const int sequenceNumberBytes = type == "fdAT" ? int(sizeof(quint32)) : 0;
            frame->encoded.data = data.mid(sequenceNumberBytes);
            return compose(frame->encoded);
        }
    }
    return false;
}

bool ApngFrameReader::readChunk(QByteArray *type, QByteArray *data)
{
    const QByteArray head = m_file.read(8);
    if (head.size() < 8)
        return false;
    *type = head.mid(4);
    *data = m_file.read(numberAt<quint32>(head, 0));
    return png::chunk(*type, *data) == head + *data + m_file.read(4);
}

/// Decodes the frame by wrapping its data in a still PNG.
bool ApngFrameReader::compose(const EncodedFrame &frame)
{
    const QImage image = QImage::fromData(png::kSignature + png::header(frame.rect.size()) + m_transparency +
                                              png::chunk("IDAT", frame.data) + png::chunk("IEND", {}),
                                          "PNG");
    if (image.size() != frame.rect.size())
        return false;
    QPainter(&m_image).drawImage(frame.rect.topLeft(), image);
    return true;
}

} // namespace av
