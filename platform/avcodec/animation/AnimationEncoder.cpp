#include "avcodec/animation/AnimationEncoder.h"

#include "logging/PlatformLog.h"

#include <QDebug>
#include <QRegularExpression>

#include <algorithm>
#include <chrono>
#include <exception>
#include <thread>

namespace av
{

namespace
{

constexpr int kMaxPlays = 65535;       // what all formats can hold
constexpr qint64 kMaxPixels = 1 << 28; // keeps every buffer of one picture well below the 2 GiB of a QByteArray
constexpr int kMaxFps = 1000;

/// Encoding a huge picture may take long; only a worker that hangs takes longer than this.
constexpr auto kQueueTimeout = std::chrono::minutes(10);

/// An encode on every core, and the next one ready.
std::size_t framesAtOnce()
{
    return std::clamp(std::thread::hardware_concurrency(), 1u, 8u) + 1;
}

/// No value: the text is not understood.
std::optional<int> playsFrom(const QString &extra)
{
    if (extra.isEmpty())
        return 0;
    static const QRegularExpression form(QStringLiteral("^loop=(\\d{1,5})$"));
    const QRegularExpressionMatch match = form.match(extra);
    const int plays = match.captured(1).toInt();
    if (!match.hasMatch() || plays > kMaxPlays)
        return std::nullopt;
    return plays;
}

} // namespace

AnimationEncoder::AnimationEncoder(QSize size, const QString &path, int fps, const QString &extra,
                                   std::unique_ptr<AnimationFormat> format)
    : m_size(size)
    , m_fps(fps)
    , m_format(std::move(format))
{
    if (fps < 1 || fps > kMaxFps) {
        fail(QStringLiteral("Invalid frame rate: %1").arg(fps));
        return;
    }
    m_limits = m_format->limits();
    if (size.isEmpty() || std::max(size.width(), size.height()) > m_limits.largestSide ||
        qint64(size.width()) * size.height() > kMaxPixels) {
        fail(QStringLiteral("Invalid picture size: %1x%2").arg(size.width()).arg(size.height()));
        return;
    }
    const std::optional<int> plays = playsFrom(extra);
    if (!plays) {
        fail(QStringLiteral("Invalid option: %1").arg(extra));
        return;
    }
    m_plays = *plays;
    if (!m_file.open(path)) {
        fail(m_file.errorString());
        return;
    }
    m_writer.emplace(framesAtOnce(), [this](Job &job) { return write(job); });
}

AnimationEncoder::~AnimationEncoder()
{
    AnimationEncoder::abort();
}

bool AnimationEncoder::fail(const QString &reason)
{
    if (m_error.set(reason))
        qCWarning(kel::logCodec).noquote() << "[AnimationEncoder]" << reason;
    return false;
}

bool AnimationEncoder::waitForRoom(std::chrono::milliseconds limit)
{
    return !m_writer || m_writer->waitForRoom(limit);
}

bool AnimationEncoder::addFrame(quint64 index, const QImage &image)
{
    if (!isValid() || m_closed)
        return false;
    const QString refusal = reasonToRefuse(index, image);
    if (!refusal.isEmpty())
        return fail(refusal);
    try {
        take(index, image);
    } catch (const std::exception &problem) { // out of memory or threads
        return fail(QString::fromLocal8Bit(problem.what()));
    }
    return isValid();
}

bool AnimationEncoder::repeatLastFrameUntil(quint64 end)
{
    if (!isValid() || m_closed)
        return false;
    if (!m_pending)
        return fail(QStringLiteral("There are no frames"));
    m_frames = std::max(m_frames, end);
    return true;
}

QString AnimationEncoder::reasonToRefuse(quint64 index, const QImage &image) const
{
    if (index < m_frames)
        return QStringLiteral("Frame %1 comes too late").arg(index);
    if (image.size() != m_size) {
        return QStringLiteral("Frame %1 has %2x%3 pixels instead of %4x%5")
            .arg(index)
            .arg(image.width())
            .arg(image.height())
            .arg(m_size.width())
            .arg(m_size.height());
    }
    return {};
}

void AnimationEncoder::take(quint64 index, const QImage &image)
{
    m_frames = index + 1;
    if (!m_pending) {
        m_comparer.emplace(m_size, m_limits.alignment);
        m_pending = m_comparer->accept(image, QRect(QPoint(0, 0), m_size));
        m_format->analyzeFirstFrame(*m_pending);
        return;
    }
    const QRect changed = m_comparer->changedRect(image);
    if (changed.isEmpty())
        return;
    const qint64 start = ticksAt(index);
    if (start - m_pendingStart < m_limits.shortest) {
        const FrameDelta latest = m_comparer->accept(image, changed);
        m_pending = m_comparer->merged(*m_pending, latest);
        return;
    }
    commit(start, index);
    m_pending = m_comparer->accept(image, changed);
    m_pendingStart = start;
}

qint64 AnimationEncoder::ticksAt(quint64 index) const
{
    return qint64((index * m_limits.ticksPerSecond + m_fps / 2) / m_fps);
}

/// Hands over the pending picture, which is shown until `end`.
bool AnimationEncoder::commit(qint64 end, quint64 framesDone)
{
    for (;;) {
        const qint64 wanted = end - m_pendingStart;
        qint64 ticks = std::min<qint64>(wanted, m_limits.longest);
        if (ticks < wanted && wanted - ticks < m_limits.shortest)
            ticks -= m_limits.shortest;
        const bool last = ticks == wanted;

        auto encode = [this, delta = std::move(*m_pending)] { return m_format->encode(delta, m_cancelled); };
        Job job{std::async(std::launch::async, std::move(encode)), int(ticks), last ? framesDone : 0};
        if (!m_writer->push(std::move(job), kQueueTimeout))
            return fail(QStringLiteral("The encoder does not answer")); // unless there is a better reason already
        if (last)
            return true;
        m_pendingStart += ticks;
        m_pending = m_comparer->nothing();
    }
}

bool AnimationEncoder::write(Job &job)
{
    try {
        const EncodedFrame picture = job.picture.get();
        if (m_cancelled)
            return false;
        if (picture.data.isEmpty()) {
            fail(QStringLiteral("A frame cannot be encoded"));
        } else if (append(picture, job.ticks)) {
            if (job.framesDone > 0)
                m_framesWritten = job.framesDone;
            return true;
        } else {
            fail(m_file.errorString());
        }
    } catch (const std::exception &problem) {
        fail(QString::fromLocal8Bit(problem.what()));
    }
    if (!m_cancelled)
        saveWholeFrames();
    return false;
}

bool AnimationEncoder::append(const EncodedFrame &picture, int ticks)
{
    const bool isReady = m_wholeFrames > 0 ? m_format->prepareToWrite(m_file, picture, m_cancelled)
                                           : m_format->writeHeader(m_file, m_size, m_plays);
    if (m_wholeFrames > 0)
        m_wholeFrames = m_file.size(); // which may have changed
    if (!isReady || !m_format->writeFrame(m_file, picture, ticks))
        return false;
    m_wholeFrames = m_file.size();
    return true;
}

/// After a failure: what has been written so far becomes a file of its own right.
void AnimationEncoder::saveWholeFrames()
{
    if (m_wholeFrames > 0 && m_file.truncate(m_wholeFrames))
        m_format->writeTrailer(m_file);
}

bool AnimationEncoder::close()
{
    if (m_closed)
        return isValid();
    m_closed = true;
    if (!m_writer)
        return false;
    if (!m_pending)
        return fail(QStringLiteral("There are no frames"));
    try {
        if (isValid())
            commit(std::max(ticksAt(m_frames), m_pendingStart + m_limits.shortest), m_frames);
    } catch (const std::exception &problem) {
        fail(QString::fromLocal8Bit(problem.what()));
    }
    m_writer->finish();
    if (isValid() && !m_format->writeTrailer(m_file)) {
        fail(m_file.errorString());
        saveWholeFrames();
    }
    m_isComplete = isValid();
    return m_isComplete;
}

void AnimationEncoder::abort()
{
    if (m_isComplete)
        return;
    m_error.set(QStringLiteral("Aborted"));
    m_cancelled = true;
    if (m_writer)
        m_writer->abort();
}

} // namespace av
