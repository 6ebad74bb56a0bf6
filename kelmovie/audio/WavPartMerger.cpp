#include "audio/WavPartMerger.h"

#include "audio/WavHeader.h"
#include "audio/WavPart.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{
constexpr qint64 ChunkSize = 1 << 20;

struct Messages {
    const char *cannotRename;
    const char *cannotOpenOutput;
    const char *cannotOpenPart;
    const char *partTooShort;
    const char *formatDiffers;
    const char *cannotDelete;
    const char *outputInvalid;
};

constexpr Messages SystemAudio{"重命名分段文件失败:",      "无法打开输出文件进行合并:",        "无法打开分段文件:",
                               "分段文件数据不足:",        "WAV分段格式不匹配，播放可能失败!", "删除分段文件失败:",
                               "合并后的文件无效或不存在:"};
constexpr Messages Microphone{
    "重命名麦克风分段文件失败:",      "无法打开麦克风输出文件进行合并:",        "无法打开麦克风分段文件:",
    "麦克风分段文件数据不足:",        "麦克风WAV分段格式不匹配，播放可能失败!", "删除麦克风分段文件失败:",
    "合并后的麦克风文件无效或不存在:"};

class Merger
{
public:
    Merger(const QString &output, const Messages &messages)
        : m_messages(messages)
        , m_output(output)
    {
    }

    void merge(const QStringList &parts);
    QString problem() const { return m_problem; }

private:
    void rename(const QString &part);
    void join(const QStringList &parts);
    bool begin(const QStringList &parts);
    bool join(const QString &path);
    qint64 wholeFrames(const WavPart &part) const;
    bool copyData(WavPart &part);
    void checkOutput();
    void keepProblem(const QString &problem);

    const Messages m_messages;
    QFile m_output;
    WavHeader m_header;
    QByteArray m_fmtChunk;
    qint64 m_total = 0;
    QString m_problem;
};

void Merger::merge(const QStringList &parts)
{
    if (parts.isEmpty()) {
        qWarning() << "没有分段文件需要合并";
        return;
    }
    if (parts.size() == 1)
        rename(parts.first());
    else
        join(parts);
    checkOutput();
}

void Merger::rename(const QString &part)
{
    QFile file(part);
    if (file.rename(m_output.fileName()))
        return;
    qWarning() << m_messages.cannotRename << part << "到" << m_output.fileName();
    if (file.exists())
        keepProblem(QStringLiteral("the sound stays in %1: %2").arg(part, file.errorString()));
}

void Merger::join(const QStringList &parts)
{
    if (!m_output.open(QIODevice::ReadWrite | QIODevice::Truncate)) {
        qWarning() << m_messages.cannotOpenOutput << m_output.fileName();
        keepProblem(QStringLiteral("the sound stays in its parts, cannot write %1: %2")
                        .arg(m_output.fileName(), m_output.errorString()));
        return;
    }
    if (!begin(parts)) {
        m_output.remove();
        return;
    }
    for (const QString &part : parts) {
        if (!join(part))
            break;
    }
    m_output.close();
}

/// The first part that states a format states it for all.
bool Merger::begin(const QStringList &parts)
{
    for (const QString &path : parts) {
        WavPart part(path);
        if (!part.open() || !part.hasHeader())
            continue;
        m_header = part.header();
        m_fmtChunk = part.fmtChunk();
        if (m_output.write(m_header.toBytes()) == WavHeader::Size)
            return true;
        keepProblem(QStringLiteral("the sound stays in its parts, cannot write %1: %2")
                        .arg(m_output.fileName(), m_output.errorString()));
        return false;
    }
    for (const QString &path : parts)
        qWarning() << (QFileInfo(path).exists() ? "首分段头部读取失败:" : m_messages.cannotOpenPart) << path;
    keepProblem(QStringLiteral("no part of %1 says what its sound is").arg(m_output.fileName()));
    return false;
}

/// False when the output takes no more.
bool Merger::join(const QString &path)
{
    WavPart part(path);
    if (!part.open()) {
        qWarning() << m_messages.cannotOpenPart << path;
        if (QFileInfo::exists(path))
            keepProblem(QStringLiteral("cannot read %1: %2").arg(path, part.errorString()));
        return true;
    }
    if (part.isTooShort()) {
        qWarning() << m_messages.partTooShort << path;
        return true;
    }
    if (part.hasHeader() && part.fmtChunk() != m_fmtChunk)
        qWarning() << m_messages.formatDiffers;

    const qint64 before = m_total;
    // The sizes count the part before it is deleted: after a crash its sound is in one place at least.
    if (!copyData(part) || !WavHeader::writeSizes(m_output, m_total) || !m_output.flush()) {
        keepProblem(QStringLiteral("the sound from %1 on stays in its parts, cannot write %2: %3")
                        .arg(path, m_output.fileName(), m_output.errorString()));
        m_total = before;
        m_output.resize(WavHeader::Size + m_total);
        WavHeader::writeSizes(m_output, m_total);
        return false;
    }
    if (m_total - before < wholeFrames(part)) {
        keepProblem(QStringLiteral("cannot read all of %1: %2").arg(path, part.errorString()));
        return true;
    }
    part.close();
    if (!QFile::remove(path))
        qWarning() << m_messages.cannotDelete << path;
    return true;
}

/// A frame that a crash tore apart would exchange the channels of all that follows.
qint64 Merger::wholeFrames(const WavPart &part) const
{
    return part.dataSize() - part.dataSize() % qMax<qint64>(1, m_header.blockAlign);
}

bool Merger::copyData(WavPart &part)
{
    if (!m_output.seek(WavHeader::Size + m_total))
        return false;
    const qint64 size = wholeFrames(part);
    for (qint64 copied = 0; copied < size;) {
        const QByteArray bytes = part.read(qMin(ChunkSize, size - copied));
        if (bytes.isEmpty())
            return true;
        if (m_output.write(bytes) != bytes.size())
            return false;
        copied += bytes.size();
        m_total += bytes.size();
    }
    return true;
}

void Merger::checkOutput()
{
    const QString path = m_output.fileName();
    if (QFileInfo(path).size() <= WavHeader::Size) {
        qWarning() << m_messages.outputInvalid << path;
        return;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qWarning() << "无法打开合并后WAV文件计算时长:" << path;
    else if (file.read(WavHeader::Size).size() < WavHeader::Size)
        qWarning() << "无法读取WAV头部，无法计算时长:" << path;
}

void Merger::keepProblem(const QString &problem)
{
    if (m_problem.isEmpty())
        m_problem = problem;
}

void reportLeftovers(const QString &output)
{
    const QFileInfo info(output);
    const QStringList leftovers =
        info.absoluteDir().entryList({info.completeBaseName() + QStringLiteral("_part*.wav")}, QDir::Files, QDir::Name);
    if (!leftovers.isEmpty())
        qWarning() << "目录下仍有残留分段文件:" << leftovers;
}
} // namespace

QString mergePartFiles(const QStringList &parts, const QString &output)
{
    Merger merger(output, SystemAudio);
    merger.merge(parts);
    if (!parts.isEmpty())
        reportLeftovers(output);
    return merger.problem();
}

QString mergeMicrophoneParts(const QStringList &parts, const QString &output)
{
    Merger merger(output, Microphone);
    merger.merge(parts);
    return merger.problem();
}
