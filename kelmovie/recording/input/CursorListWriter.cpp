#include "recording/input/CursorListWriter.h"

#include "files/PrivateFile.h"
#include "recording/FileWriting.h"
#include "recording/KelRecordingFiles.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace kel
{

namespace
{
QString imageName(const QString &id)
{
    return id + QLatin1String(".png");
}
} // namespace

CursorListWriter::CursorListWriter(const QString &trackDir)
    : m_listPath(KelRecordingFiles::path(trackDir, KelRecordingFiles::kCursorList))
    , m_imageDir(KelRecordingFiles::path(trackDir, KelRecordingFiles::kCursorImageDir))
{
}

bool CursorListWriter::add(const QString &id, const QPixmap &image, const QPoint &hotspot)
{
    m_cursors.insert(id, {hotspot, image.devicePixelRatio()});
    m_isListCurrent = false;
    m_failedPath = m_imageDir;
    m_error = makePrivateDirectory(m_imageDir);
    if (!m_error.isEmpty())
        return false;
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    m_error = QStringLiteral("the image cannot be encoded");
    m_failedPath = m_imageDir + QLatin1Char('/') + imageName(id);
    return image.save(&buffer, "PNG") && replaceFile(m_failedPath, png, &m_error);
}

bool CursorListWriter::writeList()
{
    QJsonArray list;
    for (auto cursor = m_cursors.cbegin(); cursor != m_cursors.cend(); ++cursor) {
        list.append(QJsonObject{{QStringLiteral("id"), cursor.key()},
                                {QStringLiteral("image"), imageName(cursor.key())},
                                {QStringLiteral("hotspot_x"), cursor->hotspot.x()},
                                {QStringLiteral("hotspot_y"), cursor->hotspot.y()},
                                {QStringLiteral("device_pixel_ratio"), cursor->devicePixelRatio}});
    }
    const QJsonObject object{{QStringLiteral("cursors"), list}, {QStringLiteral("total_types"), list.size()}};
    m_failedPath = m_listPath;
    m_isListCurrent = replaceFile(m_listPath, QJsonDocument(object).toJson(), &m_error);
    return m_isListCurrent;
}

} // namespace kel
