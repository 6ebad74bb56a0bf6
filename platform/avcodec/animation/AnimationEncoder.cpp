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

constexpr int kMaxPlays = 65535;       // supported by all formats
constexpr qint64 kMaxPixels = 1 << 28; // keeps every buffer of a frame well below the 2 GiB limit of QByteArray
constexpr int kMaxFps = 1000;

/// Longer than a huge frame takes to encode: only a hanging worker exceeds it.
constexpr auto kQueueTimeout = std::chrono::minutes(10);

int threadCount()
{
    return int(std::clamp(std::thread::hardware_concurrency(), 1u, 8u));
}

/// No value if the option is invalid.
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
    if (size.isEmpty() || std::max(size.width(), size.height()) > m_limits.maxSide ||
        qint64(size.width()) * size.height() > kMaxPixels) {
        fail(QStringLiteral("Invalid frame size: %1x%2").arg(size.width()).arg(size.height()));
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
    m_pool.setMaxThreadCount(threadCount());
    // One frame more than there are threads, so that no thread idles.
    const std::size_t capacity = std::size_t(threadCount()) + 1;
    m_writer.emplace(capacity, [this](Job &job) { return write(job); });
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

bool AnimationEncoder::waitForRoom(std::chrono::milliseconds timeout)
{
    return !m_writer || m_writer->waitForRoom(timeout);
}

bool AnimationEncoder::addFrame(quint64 index, const QImage &image)
{
    if (!isValid() || m_closed)
        return false;
    const QString problem = frameError(index, image);
    if (!problem.isEmpty())
        return fail(problem);
    try {
        accept(index, image);
    } catch (const std::exception &exception) { // such as std::bad_alloc
        return fail(QString::fromLocal8Bit(exception.what()));
    }
    return isValid();
}

bool AnimationEncoder::repeatLastFrameUntil(quint64 end)
{
    if (!isValid() || m_closed)
        return false;
    if (!m_pending)
        return fail(QStringLiteral("No frames were added"));
    m_frames = std::max(m_frames, end);
    return true;
}

QString AnimationEncoder::frameError(quint64 index, const QImage &image) const
{
    if (index < m_frames)
        return QStringLiteral("Frame %1 is out of order").arg(index);
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

void AnimationEncoder::accept(quint64 index, const QImage &image)
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
    if (start - m_pendingStart < m_limits.minTicks) {
        const FrameDelta latest = m_comparer->accept(image, changed);
        m_pending = m_comparer->merged(*m_pending, latest);
        return;
    }
    commitPending(start, index);
    m_pending = m_comparer->accept(image, changed);
    m_pendingStart = start;
}

qint64 AnimationEncoder::ticksAt(quint64 index) const
{
    return qint64((index * m_limits.ticksPerSecond + m_fps / 2) / m_fps);
}

/// Queues the pending frame, now that it is known to be shown until `end` (ticks). A duration beyond the limit of the
/// format is split over several frames.
bool AnimationEncoder::commitPending(qint64 end, quint64 framesDone)
{
    for (;;) {
        const qint64 wanted = end - m_pendingStart;
        qint64 ticks = std::min<qint64>(wanted, m_limits.maxTicks);
        if (ticks < wanted && wanted - ticks < m_limits.minTicks)
            ticks -= m_limits.minTicks;
        const bool last = ticks == wanted;

        Job job{encodeAsync(std::move(*m_pending)), int(ticks), last ? framesDone : 0};
        if (!m_writer->push(std::move(job), kQueueTimeout))
            return fail(QStringLiteral("The encoder is not responding")); // unless it has failed, which is kept
        if (last)
            return true;
        m_pendingStart += ticks;
        m_pending = m_comparer->unchanged();
    }
}

std::future<EncodedFrame> AnimationEncoder::encodeAsync(FrameDelta delta)
{
    using Task = std::packaged_task<EncodedFrame()>;
    const auto task = std::make_shared<Task>([this, delta = std::move(delta)] {
        return m_cancelled ? EncodedFrame() : m_format->encode(delta, m_cancelled);
    });
    std::future<EncodedFrame> future = task->get_future();
    m_pool.start([task] { (*task)(); });
    return future;
}

bool AnimationEncoder::write(Job &job)
{
    try {
        const EncodedFrame frame = job.frame.get();
        if (m_cancelled)
            return false;
        if (frame.data.isEmpty()) {
            fail(QStringLiteral("A frame could not be encoded"));
        } else if (append(frame, job.ticks)) {
            if (job.framesDone > 0)
                m_framesWritten = job.framesDone;
            return true;
        } else {
            fail(m_file.errorString());
        }
    } catch (const std::exception &exception) {
        fail(QString::fromLocal8Bit(exception.what()));
    }
    if (!m_cancelled)
        finishAfterLastWholeFrame();
    return false;
}

bool AnimationEncoder::append(const EncodedFrame &frame, int ticks)
{
    const bool isReady = m_wholeFramesEnd > 0 ? m_format->prepareToWrite(m_file, frame, m_cancelled)
                                              : m_format->writeHeader(m_file, m_size, m_plays);
    if (m_wholeFramesEnd > 0)
        m_wholeFramesEnd = m_file.size(); // the file may have been rewritten
    if (!isReady || !m_format->writeFrame(m_file, frame, ticks))
        return false;
    m_wholeFramesEnd = m_file.size();
    return true;
}

/// After a failed write: turns what has been written into a valid file.
void AnimationEncoder::finishAfterLastWholeFrame()
{
    if (m_wholeFramesEnd > 0 && m_file.truncate(m_wholeFramesEnd))
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
        return fail(QStringLiteral("No frames were added"));
    try {
        if (isValid())
            commitPending(std::max(ticksAt(m_frames), m_pendingStart + m_limits.minTicks), m_frames);
    } catch (const std::exception &exception) {
        fail(QString::fromLocal8Bit(exception.what()));
    }
    m_writer->finish();
    if (isValid() && !m_format->writeTrailer(m_file)) {
        fail(m_file.errorString());
        finishAfterLastWholeFrame();
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
