#include "avcodec/audio/MixAudioVideoTracks.h"

#include "avcodec/audio/MixContainer.h"
#include "avcodec/audio/MixJob.h"
#include "files/RenameOver.h"
#include "logging/PlatformLog.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace av;

namespace
{

MixError cannotWrite(const QString &path, const QString &reason)
{
    return {QStringLiteral("Cannot write %1: %2").arg(path, reason), true};
}

/// Mixes in a private directory next to the output: nobody can replace the file meanwhile, and it can be renamed to the
/// output in one step.
MixError mixInto(const QFileInfo &target, const QString &videoPath, const QList<AudioTrack> &tracks,
                 const MixProgress &progress)
{
    const QString path = target.filePath();
    const MixContainer *container = MixContainer::ofFile(path);
    if (!container)
        return {QStringLiteral("No sound can be written to a file of type \"%1\"").arg(target.suffix())};
    if (target.exists() && !target.isFile())
        return {QStringLiteral("Not a regular file: %1").arg(path), true};
    const QTemporaryDir dir(target.path() + QLatin1String("/.kel_mix_XXXXXX"));
    if (!dir.isValid())
        return cannotWrite(path, dir.errorString());
    const QString mixed = dir.filePath(QLatin1String("mix.") + QLatin1String(container->suffix));
    {
        MixJob job(*container, mixed, progress);
        QString problem = job.open(videoPath, tracks);
        if (problem.isEmpty())
            problem = job.run();
        if (!job.outputError().isEmpty())
            return cannotWrite(path, job.outputError());
        if (!problem.isEmpty())
            return {problem};
    }
    if (target.exists())
        QFile::setPermissions(mixed, target.permissions());
    const QString problem = kel::renameOver(mixed, path);
    return problem.isEmpty() ? MixError() : cannotWrite(path, problem);
}

} // namespace

bool canMixInto(const QString &path)
{
    return MixContainer::ofFile(path) != nullptr;
}

bool MixAudioVideoTracks(const QString &videoPath, const QList<AudioTrack> &tracks, const QString &outputPath,
                         const MixProgress &progress, MixError *error)
{
    const QFileInfo output(outputPath);
    // Replaces the target of a symbolic link, not the link.
    const QFileInfo target(output.exists() ? output.canonicalFilePath() : outputPath);
    const MixError problem = mixInto(target, videoPath, tracks, progress);
    if (!problem.text.isEmpty() && problem.text != QLatin1String(MixJob::kCancelled))
        qCWarning(kel::logCodec).noquote() << "[MixAudioVideoTracks]" << problem.text;
    if (error)
        *error = problem;
    return problem.text.isEmpty();
}
