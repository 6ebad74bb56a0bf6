#include "recording/wav/WavPartMerger.h"

#include "logging/Log.h"
#include "recording/wav/SoundFiles.h"
#include "recording/wav/WavHeader.h"
#include "recording/wav/WavPartReader.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>

namespace kel
{

namespace
{
constexpr qint64 kBlockSize = 1 << 20;
constexpr qint64 kAudibleMs = 20;

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
    Merger(const QString &output, const Messages &messages, const QList<WavPartTime> &times = {})
        : m_messages(messages)
        , m_times(times)
        , m_output(output)
    {
    }

    void merge(const QStringList &parts);
    QString problem() const { return m_problem; }

private:
    bool isLate(const QString &part) const;
    void rename(const QString &part);
    void join(const QStringList &parts);
    bool begin(const QStringList &parts);
    bool join(const QString &path, const WavPartTime &time);
    bool add(WavPartReader &part, const WavPartTime &time);
    bool copyData(WavPartReader &part, qint64 size);
    bool addSilenceFor(const WavPartTime &time);
    bool addSilence(qint64 size);
    qint64 wholeFrames(qint64 size) const;
    qint64 bytesOf(qint64 ms) const;
    void checkOutput();
    void keepProblem(const QString &problem);

    const Messages m_messages;
    const QList<WavPartTime> m_times;
    QFile m_output;
    WavHeader m_header;
    QByteArray m_fmtChunk;
    qint64 m_total = 0;
    QString m_problem;
};

void Merger::merge(const QStringList &parts)
{
    if (parts.isEmpty()) {
        qCWarning(logRecording) << "没有分段文件需要合并";
        return;
    }
    if (parts.size() == 1 && !isLate(parts.first()))
        rename(parts.first());
    else
        join(parts);
    checkOutput();
}

/// Whether the part is noticeably shorter than its recorded time.
bool Merger::isLate(const QString &path) const
{
    const WavPartTime time = m_times.value(0);
    WavPartReader part(path);
    return time.durationMs > 0 && part.open() && part.header().byteRate > 0 &&
           part.dataSize() * 1000 / part.header().byteRate < time.durationMs + time.surplusMs - kAudibleMs;
}

void Merger::rename(const QString &part)
{
    QFile file(part);
    if (file.rename(m_output.fileName()))
        return;
    qCWarning(logRecording) << m_messages.cannotRename << part << "到" << m_output.fileName();
    if (file.exists())
        keepProblem(QStringLiteral("the sound stays in %1: %2").arg(part, file.errorString()));
}

void Merger::join(const QStringList &parts)
{
    if (!m_output.open(QIODevice::ReadWrite | QIODevice::Truncate)) {
        qCWarning(logRecording) << m_messages.cannotOpenOutput << m_output.fileName();
        keepProblem(QStringLiteral("the sound stays in its parts, cannot write %1: %2")
                        .arg(m_output.fileName(), m_output.errorString()));
        return;
    }
    if (!begin(parts)) {
        m_output.remove();
        return;
    }
    for (int i = 0; i < parts.size(); ++i) {
        if (!join(parts[i], m_times.value(i)))
            break;
    }
    WavHeader::writeSizes(m_output, m_total);
    m_output.close();
}

/// Takes the format of the output from the first part that has one.
bool Merger::begin(const QStringList &parts)
{
    for (const QString &path : parts) {
        WavPartReader part(path);
        if (!part.open() || !part.hasHeader())
            continue;
        m_header = part.header();
        m_fmtChunk = part.fmtChunk();
        if (m_output.write(m_header.toBytes()) == WavHeader::kSize)
            return true;
        keepProblem(QStringLiteral("the sound stays in its parts, cannot write %1: %2")
                        .arg(m_output.fileName(), m_output.errorString()));
        return false;
    }
    for (const QString &path : parts)
        qCWarning(logRecording) << (QFileInfo(path).exists() ? "首分段头部读取失败:" : m_messages.cannotOpenPart)
                                << path;
    keepProblem(QStringLiteral("no part of %1 states the format of its sound").arg(m_output.fileName()));
    return false;
}

/// False when the output cannot be written.
bool Merger::join(const QString &path, const WavPartTime &time)
{
    WavPartReader part(path);
    if (!part.open()) {
        qCWarning(logRecording) << m_messages.cannotOpenPart << path;
        if (QFileInfo::exists(path))
            keepProblem(QStringLiteral("cannot read %1: %2").arg(path, part.errorString()));
        return addSilenceFor(time);
    }
    if (part.isTooShort()) {
        qCWarning(logRecording) << m_messages.partTooShort << path;
        return addSilenceFor(time);
    }
    if (part.hasHeader() && part.fmtChunk() != m_fmtChunk)
        qCWarning(logRecording) << m_messages.formatDiffers;

    const qint64 before = m_total;
    // The sizes include the part before it is deleted, so that a crash cannot lose its sound.
    if (!add(part, time) || !WavHeader::writeSizes(m_output, m_total) || !m_output.flush()) {
        keepProblem(QStringLiteral("the sound from %1 on stays in its parts, cannot write %2: %3")
                        .arg(path, m_output.fileName(), m_output.errorString()));
        m_total = before;
        m_output.resize(WavHeader::kSize + m_total);
        return false;
    }
    if (part.hasReadError()) {
        keepProblem(QStringLiteral("cannot read all of %1: %2").arg(path, part.errorString()));
        return true;
    }
    part.close();
    if (!QFile::remove(path))
        qCWarning(logRecording) << m_messages.cannotDelete << path;
    return true;
}

/// Adds silence for the time before the sound began and for what is missing at its end.
bool Merger::add(WavPartReader &part, const WavPartTime &time)
{
    if (!m_output.seek(WavHeader::kSize + m_total))
        return false;
    const qint64 size = qMax(qint64(0), wholeFrames(part.dataSize()) - bytesOf(time.surplusMs));
    const qint64 missing = qMax(qint64(0), bytesOf(time.durationMs) - size);
    const qint64 late = qMin(missing, bytesOf(time.lateMs));
    return addSilence(late) && copyData(part, size) && addSilence(missing - late);
}

/// Leaves out an incomplete frame, which a crash may have left: it would swap the channels of all that follows.
qint64 Merger::wholeFrames(qint64 size) const
{
    return size - size % qMax<qint64>(1, m_header.blockAlign);
}

/// Replaces an unusable part by silence.
bool Merger::addSilenceFor(const WavPartTime &time)
{
    if (m_output.seek(WavHeader::kSize + m_total) && addSilence(bytesOf(time.durationMs)))
        return true;
    keepProblem(QStringLiteral("cannot write %1: %2").arg(m_output.fileName(), m_output.errorString()));
    return false;
}

qint64 Merger::bytesOf(qint64 ms) const
{
    return wholeFrames(ms * m_header.byteRate / 1000);
}

bool Merger::addSilence(qint64 size)
{
    const QByteArray zeros(int(qMin(size, kBlockSize)), '\0');
    while (size > 0) {
        const qint64 written = m_output.write(zeros.constData(), qMin(size, kBlockSize));
        if (written <= 0)
            return false;
        size -= written;
        m_total += written;
    }
    return true;
}

/// Stops early when the part cannot be read to its end; false when the output cannot be written.
bool Merger::copyData(WavPartReader &part, qint64 size)
{
    for (qint64 copied = 0; copied < size;) {
        const QByteArray bytes = part.read(qMin(kBlockSize, size - copied));
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
    if (m_problem.isEmpty())
        m_problem = problem;
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

QString mergeMicrophoneParts(const QStringList &parts, const QString &output, const QList<WavPartTime> &times)
{
    Merger merger(output, kMicrophoneMessages, times);
    merger.merge(parts);
    return merger.problem();
}

} // namespace kel
