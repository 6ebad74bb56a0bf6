#include "recording/wav/SoundFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>

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

StoredSound findSound(const QString &voiceDir, QLatin1String source)
{
    static const QRegularExpression partName(QStringLiteral("^(.*)_part(\\d{1,6})\\.wav$"));
    // Links, pipes and others are listed as well: opening them says what they are.
    const QFileInfoList files =
        QDir(voiceDir).entryInfoList({source + QLatin1String("*.wav")}, QDir::Files | QDir::System, QDir::Time);
    QString chosen;
    StoredSound sound;
    QMap<int, QString> parts;
    for (const QFileInfo &file : files) {
        const QRegularExpressionMatch part = partName.match(file.fileName());
        const QString name = part.hasMatch() ? part.captured(1) : file.completeBaseName();
        if (chosen.isNull())
            chosen = name;
        if (name != chosen)
            continue;
        if (part.hasMatch())
            parts.insert(part.captured(2).toInt(), file.filePath());
        else
            sound.whole = file.filePath();
    }
    sound.parts = parts.values();
    sound.hasFirstPart = parts.contains(0);
    return sound;
}

QStringList remainingParts(const QString &soundFile)
{
    const QFileInfo info(soundFile);
    return info.absoluteDir().entryList({info.completeBaseName() + QLatin1String("_part*.wav")}, QDir::Files,
                                        QDir::Name);
}

} // namespace kel
