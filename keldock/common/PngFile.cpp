#include "common/PngFile.h"

#include "files/WriteAll.h"

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
    return kel::writeAll(file, png.data()) && file.commit() ? QString() : file.errorString();
}
