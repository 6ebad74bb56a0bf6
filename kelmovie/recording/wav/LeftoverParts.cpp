#include "recording/wav/LeftoverParts.h"

#include "logging/Log.h"
#include "recording/wav/WavHeader.h"
#include "recording/wav/WavPartMerger.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QRegularExpression>

namespace kel
{

namespace
{
/// A recording writes its present part several times a second, also while it is paused.
constexpr qint64 UnderWaySeconds = 10;

using Parts = QMap<int, QString>; // by their number

/// A single part has just been renamed, with sizes that its process did not live to write.
void completeSizes(const QString &path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadWrite) && file.read(WavHeader::Size).indexOf("data") == WavHeader::Size - 8)
        WavHeader::writeSizes(file, file.size() - WavHeader::Size);
}
} // namespace

void joinLeftoverParts(const QString &directory)
{
    static const QRegularExpression partName(QStringLiteral("^((?:system_audio|microphone)_.*)_part(\\d{1,6})\\.wav$"));
    const QDateTime recently = QDateTime::currentDateTime().addSecs(-UnderWaySeconds);
    QMap<QString, Parts> recordings;
    bool isUnderWay = false;
    const QFileInfoList files = QDir(directory).entryInfoList({QStringLiteral("*_part*.wav")}, QDir::Files);
    for (const QFileInfo &file : files) {
        const QRegularExpressionMatch match = partName.match(file.fileName());
        if (!match.hasMatch())
            continue;
        recordings[match.captured(1)].insert(match.captured(2).toInt(), file.filePath());
        isUnderWay = isUnderWay || file.lastModified() > recently;
    }
    if (isUnderWay)
        return;
    for (auto it = recordings.cbegin(); it != recordings.cend(); ++it) {
        const QString output = directory + QLatin1Char('/') + it.key() + QStringLiteral(".wav");
        if (QFileInfo::exists(output))
            continue;
        const QStringList parts = it->values();
        const QString problem = it.key().startsWith(QLatin1String("system_audio"))
                                    ? mergePartFiles(parts, output)
                                    : mergeMicrophoneParts(parts, output);
        if (!problem.isEmpty())
            qCWarning(logRecording).noquote() << "[joinLeftoverParts]" << problem;
        completeSizes(output);
    }
}

} // namespace kel
