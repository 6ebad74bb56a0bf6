#include "files/WriteAll.h"

#include <QIODevice>

namespace kel
{

bool writeAll(QIODevice &device, const QByteArray &bytes)
{
    qint64 written = 0;
    while (written < bytes.size()) {
        const qint64 more = device.write(bytes.constData() + written, bytes.size() - written);
        if (more <= 0)
            return false;
        written += more;
    }
    return true;
}

} // namespace kel
