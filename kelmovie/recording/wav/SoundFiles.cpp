#include "recording/wav/SoundFiles.h"

#include "recording/KelRecordingFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace kel
{

QString soundFilePath(const QString &voiceDir, QLatin1String source, const QDateTime &start)
{
    return QStringLiteral("%1/%2_%3.wav").arg(voiceDir, source, start.toString(QStringLiteral("yyyyMMdd_hhmmss")));
}

QString soundPartPath(const QString &soundFile, int number)
{
    QString path = soundFile;
    return path.insert(soundFile.lastIndexOf(QLatin1Char('.')), QStringLiteral("_part%1").arg(number));
}

QString findSoundFile(const QString &voiceDir, QLatin1String source)
{
    const QDir dir(voiceDir);
    const QStringList files = dir.entryList({source + QLatin1String("*.wav")}, QDir::Files, QDir::Time);
    const auto isPart = [](const QString &file) { return file.contains(QLatin1String("_part")); };
    const auto whole = std::find_if_not(files.begin(), files.end(), isPart);
    if (whole != files.end())
        return dir.filePath(*whole);
    const auto isFirstPart = [](const QString &file) { return file.endsWith(QLatin1String("_part0.wav")); };
    const auto first = std::find_if(files.begin(), files.end(), isFirstPart);
    return first != files.end() ? dir.filePath(*first) : QString();
}

QMap<QString, QMap<int, QString>> findSoundParts(const QString &voiceDir)
{
    static const QRegularExpression partName(QStringLiteral("^((?:%1|%2)_.*)_part(\\d{1,6})\\.wav$")
                                                 .arg(KelRecordingFiles::kSystemAudio, KelRecordingFiles::kMicrophone));
    QMap<QString, QMap<int, QString>> parts;
    const QFileInfoList files = QDir(voiceDir).entryInfoList({QStringLiteral("*_part*.wav")}, QDir::Files);
    for (const QFileInfo &file : files) {
        const QRegularExpressionMatch match = partName.match(file.fileName());
        if (match.hasMatch()) {
            const QString soundFile = voiceDir + QLatin1Char('/') + match.captured(1) + QLatin1String(".wav");
            parts[soundFile].insert(match.captured(2).toInt(), file.filePath());
        }
    }
    return parts;
}

QStringList remainingParts(const QString &soundFile)
{
    const QFileInfo info(soundFile);
    return info.absoluteDir().entryList({info.completeBaseName() + QLatin1String("_part*.wav")}, QDir::Files,
                                        QDir::Name);
}

} // namespace kel
