#include "recording/wav/WavPartMerger.h"

#include "files/PrivateFile.h"
#include "files/RenameOver.h"
#include "files/SyncToDisk.h"
#include "files/WriteAll.h"
#include "logging/Log.h"
#include "recording/wav/SoundFiles.h"
#include "recording/wav/WavHeader.h"
#include "recording/wav/WavReader.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace kel
{

namespace
{
constexpr qint64 kBlockSize = 1 << 20;

struct Messages {
    const char *cannotRename;
    const char *cannotOpenOutput;
    const char *cannotOpenPart;
    const char *partTooShort;
    const char *formatDiffers;
    const char *cannotDelete;
    const char *outputInvalid;
};

constexpr Messages kSystemAudioMessages{
    "重命名分段文件失败:",      "无法打开输出文件进行合并:",        "无法打开分段文件:",
    "分段文件数据不足:",        "WAV分段格式不匹配，播放可能失败!", "删除分段文件失败:",
    "合并后的文件无效或不存在:"};
constexpr Messages kMicrophoneMessages{
    "重命名麦克风分段文件失败:",      "无法打开麦克风输出文件进行合并:",        "无法打开麦克风分段文件:",
    "麦克风分段文件数据不足:",        "麦克风WAV分段格式不匹配，播放可能失败!", "删除麦克风分段文件失败:",
    "合并后的麦克风文件无效或不存在:"};

class Merger
{
public:
    Merger(const QString &output, const Messages &messages)
        : m_messages(messages)
        , m_outputPath(output)
        , m_output(output + QLatin1String(".tmp"))
    {
    }

    void merge(const QStringList &parts);
    QString problem() const { return m_problem; }

private:
    bool isComplete(const QString &part) const;
    void rename(const QString &part);
    void join(const QStringList &parts);
    bool begin(const QStringList &parts);
    bool append(const QString &path);
    bool copySound(WavReader &part);
    bool finish();
    void removeParts();
    void checkOutput();
    void keepProblem(const QString &problem);

    const Messages m_messages;
    const QString m_outputPath;
    PrivateFile m_output; ///< becomes the output when it is complete
    WavHeader m_header;
    QByteArray m_fmtChunk;
    qint64 m_total = 0;
    QStringList m_joined; ///< parts whose sound is in m_output
    QString m_problem;
};

void Merger::merge(const QStringList &parts)
{
    if (parts.isEmpty()) {
        qCWarning(logRecording) << "没有分段文件需要合并";
        return;
    }
    if (parts.size() == 1 && isComplete(parts.first()))
        rename(parts.first());
    else
        join(parts);
    checkOutput();
}

/// Whether the part can be the output as it is: it begins like all our files, or has no header that could be improved.
bool Merger::isComplete(const QString &path) const
{
    WavReader part;
    return !part.open(path) || !part.isIntact() || part.isCanonical();
}

void Merger::rename(const QString &part)
{
    const QString problem = renameOver(part, m_outputPath);
    if (problem.isEmpty())
        return;
    qCWarning(logRecording) << m_messages.cannotRename << part << "到" << m_outputPath;
    if (QFileInfo::exists(part))
        keepProblem(problem);
}

/// All or nothing: the parts stay until the output is complete.
void Merger::join(const QStringList &parts)
{
    if (!m_output.open(QIODevice::ReadWrite | QIODevice::Truncate | QIODevice::Unbuffered)) {
        qCWarning(logRecording) << m_messages.cannotOpenOutput << m_outputPath;
        keepProblem(m_output.errorString());
        return;
    }
    const auto isAppended = [this](const QString &part) { return append(part); };
    const bool isComplete = begin(parts) && std::all_of(parts.begin(), parts.end(), isAppended) && finish();
    m_output.close();
    if (isComplete)
        removeParts();
    else
        QFile::remove(m_output.fileName());
}

/// Takes the format of the output from the first part that has one.
bool Merger::begin(const QStringList &parts)
{
    for (const QString &path : parts) {
        WavReader part;
        if (!part.open(path) || !part.hasHeader())
            continue;
        m_header = part.header();
        m_fmtChunk = part.fmtChunk();
        if (writeAll(m_output, m_header.toBytes()))
            return true;
        keepProblem(m_output.errorString());
        return false;
    }
    for (const QString &path : parts)
        qCWarning(logRecording) << (QFileInfo::exists(path) ? "首分段头部读取失败:" : m_messages.cannotOpenPart)
                                << path;
    keepProblem(QStringLiteral("no part states the format of its sound"));
    return false;
}

/// Skips an unusable part. False when the output is not to be used.
bool Merger::append(const QString &path)
{
    WavReader part;
    if (!part.open(path)) {
        qCWarning(logRecording) << m_messages.cannotOpenPart << path;
        return true;
    }
    if (part.isTooShort()) {
        qCWarning(logRecording) << m_messages.partTooShort << path;
        return true;
    }
    if (part.hasHeader() && part.fmtChunk() != m_fmtChunk)
        qCWarning(logRecording) << m_messages.formatDiffers;
    if (!copySound(part)) {
        keepProblem(m_output.errorString());
        return false;
    }
    if (part.hasReadError()) {
        keepProblem(QStringLiteral("cannot read all of %1: %2").arg(path, part.errorString()));
        return false;
    }
    m_joined.append(path);
    return true;
}

/// Leaves out an incomplete frame, which a crash may have left: it would swap the channels of all that follows. Stops
/// early when the part cannot be read to its end; false when the output cannot be written.
bool Merger::copySound(WavReader &part)
{
    qint64 left = part.dataSize() - part.dataSize() % qMax<qint64>(1, m_header.blockAlign);
    while (left > 0) {
        const QByteArray bytes = part.read(qMin(kBlockSize, left));
        if (bytes.isEmpty())
            return true;
        if (!writeAll(m_output, bytes))
            return false;
        left -= bytes.size();
        m_total += bytes.size();
    }
    return true;
}

bool Merger::finish()
{
    QString problem;
    if (!WavHeader::writeSizes(m_output, m_total))
        problem = m_output.errorString();
    m_output.close();
    // The parts are deleted next, which a power failure must not leave as the only thing that has happened.
    if (problem.isEmpty())
        problem = syncFile(m_output.fileName());
    if (problem.isEmpty())
        problem = renameOver(m_output.fileName(), m_outputPath);
    if (problem.isEmpty())
        problem = syncDirectory(QFileInfo(m_outputPath).path());
    keepProblem(problem);
    return problem.isEmpty();
}

/// The first part goes last: while it is there, readers compare the parts with the output.
void Merger::removeParts()
{
    std::for_each(m_joined.crbegin(), m_joined.crend(), [&](const QString &part) {
        if (!QFile::remove(part))
            qCWarning(logRecording) << m_messages.cannotDelete << part;
    });
}

void Merger::checkOutput()
{
    const QString &path = m_outputPath;
    if (QFileInfo(path).size() <= WavHeader::kSize) {
        qCWarning(logRecording) << m_messages.outputInvalid << path;
        return;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qCWarning(logRecording) << "无法打开合并后WAV文件计算时长:" << path;
    else if (file.read(WavHeader::kSize).size() < WavHeader::kSize)
        qCWarning(logRecording) << "无法读取WAV头部，无法计算时长:" << path;
}

void Merger::keepProblem(const QString &problem)
{
    if (m_problem.isEmpty() && !problem.isEmpty())
        m_problem = QStringLiteral("its parts, which are played one after the other, could not be joined to %1: %2")
                        .arg(m_outputPath, problem);
}

void reportLeftovers(const QString &output)
{
    const QStringList leftovers = remainingParts(output);
    if (!leftovers.isEmpty())
        qCWarning(logRecording) << "目录下仍有残留分段文件:" << leftovers;
}
} // namespace

QString mergePartFiles(const QStringList &parts, const QString &output)
{
    Merger merger(output, kSystemAudioMessages);
    merger.merge(parts);
    if (!parts.isEmpty())
        reportLeftovers(output);
    return merger.problem();
}

QString mergeMicrophoneParts(const QStringList &parts, const QString &output)
{
    Merger merger(output, kMicrophoneMessages);
    merger.merge(parts);
    return merger.problem();
}

} // namespace kel
