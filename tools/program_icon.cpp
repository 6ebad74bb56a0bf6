// kel_program_icon FILE.ico: the Windows program icon, the same as that of its windows.

#include "widgets/ProgramIcon.h"

#include <QApplication>
#include <QBuffer>
#include <QDataStream>
#include <QSaveFile>

#include <cstdio>

namespace
{

constexpr int kSides[] = {16, 20, 24, 32, 40, 48, 64, 96, 128, 256};
constexpr qint64 kHeaderSize = 6;
constexpr qint64 kEntrySize = 16;

QByteArray png(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: kel_program_icon FILE.ico\n", stderr);
        return 2;
    }
    const QIcon icon = programIcon();
    QSaveFile file(QString::fromLocal8Bit(argv[1]));
    file.open(QIODevice::WriteOnly);
    QDataStream out(&file);
    out.setByteOrder(QDataStream::LittleEndian);
    out << quint16(0) << quint16(1) << quint16(std::size(kSides)); // reserved, icon file, count
    QByteArray images;
    const qint64 firstImage = kHeaderSize + kEntrySize * qint64(std::size(kSides));
    for (const int side : kSides) {
        const QByteArray image = png(icon.pixmap(side).toImage());
        out << quint8(side) << quint8(side) << quint8(0) << quint8(0) << quint16(1)
            << quint16(32) // 256 is written as 0
            << quint32(image.size()) << quint32(firstImage + images.size());
        images += image;
    }
    out.writeRawData(images.constData(), images.size());
    if (!file.commit()) {
        std::fprintf(stderr, "%s\n", qPrintable(file.errorString()));
        return 1;
    }
    return 0;
}
