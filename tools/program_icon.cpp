// kel_program_icon FILE.ico: the icon of the program for Windows, the same that its windows have.

#include "widgets/ProgramIcon.h"

#include <QApplication>
#include <QBuffer>
#include <QDataStream>
#include <QSaveFile>

#include <cstdio>

namespace
{

constexpr int sides[] = {16, 20, 24, 32, 40, 48, 64, 96, 128, 256};
constexpr qint64 headerSize = 6;
constexpr qint64 entrySize = 16;

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
    out << quint16(0) << quint16(1) << quint16(std::size(sides)); // a file of icons
    QByteArray pictures;
    const qint64 firstPicture = headerSize + entrySize * qint64(std::size(sides));
    for (const int side : sides) {
        const QByteArray picture = png(icon.pixmap(side).toImage());
        out << quint8(side) << quint8(side) << quint8(0) << quint8(0) << quint16(1)
            << quint16(32) // 256 is written as 0
            << quint32(picture.size()) << quint32(firstPicture + pictures.size());
        pictures += picture;
    }
    out.writeRawData(pictures.constData(), pictures.size());
    if (!file.commit()) {
        std::fprintf(stderr, "%s\n", qPrintable(file.errorString()));
        return 1;
    }
    return 0;
}
