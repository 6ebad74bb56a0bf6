#include "common/PngFile.h"

#include <QBuffer>
#include <QImageWriter>
#include <QSaveFile>

QString savePng(const QImage &image, const QString &path)
{
    QBuffer png;
    QImageWriter writer(&png, "png");
    if (!writer.write(image))
        return writer.errorString();
    QSaveFile file(path);
    // Unbuffered: QSaveFile does not notice when the disk is too full for what it has buffered.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return file.errorString();
    const QByteArray &bytes = png.data();
    for (qint64 written = 0; written < bytes.size();) {
        const qint64 more = file.write(bytes.constData() + written, bytes.size() - written); // may be a part
        if (more <= 0)
            return file.errorString();
        written += more;
    }
    return file.commit() ? QString() : file.errorString();
}
