#include "recording/wav/InterruptedSoundRepair.h"

#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"
#include "recording/wav/SoundFiles.h"
#include "recording/wav/WavHeader.h"
#include "recording/wav/WavPartMerger.h"

#include <QDateTime>
#include <QDebug>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace kel
{

namespace
{
/// A recording writes its current part several times a second, even while it is paused.
constexpr qint64 kRunningSeconds = 10;

/// A single part is renamed to become the sound file; its process died before it could write the final sizes.
void completeSizes(const QString &path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadWrite) && file.read(WavHeader::kSize).indexOf("data") == WavHeader::kSize - 8)
        WavHeader::writeSizes(file, file.size() - WavHeader::kSize);
}
} // namespace

void repairInterruptedSound(const QString &voiceDir)
{
    const auto partsOfFiles = findSoundParts(voiceDir);
    const QDateTime recently = QDateTime::currentDateTime().addSecs(-kRunningSeconds);
    const auto isRecent = [&](const QString &part) { return QFileInfo(part).lastModified() > recently; };
    for (const QMap<int, QString> &parts : partsOfFiles) {
        if (std::any_of(parts.begin(), parts.end(), isRecent))
            return;
    }
    for (auto it = partsOfFiles.cbegin(); it != partsOfFiles.cend(); ++it) {
        const QString &soundFile = it.key();
        if (QFileInfo::exists(soundFile))
            continue;
        const bool isSystemAudio = QFileInfo(soundFile).fileName().startsWith(KelRecordingFiles::kSystemAudio);
        const QStringList parts = it->values();
        const QString problem =
            isSystemAudio ? mergePartFiles(parts, soundFile) : mergeMicrophoneParts(parts, soundFile);
        if (!problem.isEmpty())
            qCWarning(logRecording).noquote() << "[repairInterruptedSound]" << problem;
        completeSizes(soundFile);
    }
}

} // namespace kel
