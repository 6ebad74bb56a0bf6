#include "screen/portal/CastStream.h"

#include "logging/PlatformLog.h"
#include "screen/portal/CastFormat.h"
#include "screen/portal/PipeWireLibrary.h"

#include <spa/utils/result.h>

#include <QtDebug>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <mutex>
#include <optional>

namespace kel
{

namespace
{

using SteadyClock = std::chrono::steady_clock;

// Compositors may pause a stream for a moment, for example to change its format.
constexpr std::chrono::seconds kMaxPause{3};
constexpr std::chrono::milliseconds kNoticeablePause{500};

// Where the pointer comes apart, some versions of Mutter hold back the last of several buffers in quick succession
// until something changes again. A stream that is stopped and started again gets everything, so this is done when it
// becomes quiet, and less and less often while nothing comes of it.
constexpr std::chrono::milliseconds kFirstRefresh{200};
constexpr std::chrono::milliseconds kRarestRefresh{6400};

QString systemError(int error)
{
    return QString::fromLocal8Bit(spa_strerror(-error));
}

} // namespace

class CastStream::Private
{
public:
    explicit Private(CastStream *stream)
        : m_stream(stream)
        , m_library(PipeWireLibrary::instance())
    {
    }
    ~Private() { disconnect(); }

    void connect(int remote, quint32 node);
    void setError(const QString &error);

    CastPicture picture;

    mutable std::mutex mutex; // guards the members below
    QString error;
    std::optional<SteadyClock::time_point> pausedSince;

private:
    static void onState(void *self, pw_stream_state before, pw_stream_state now, const char *error);
    static void onParameter(void *self, uint32_t id, const spa_pod *parameter);
    static void onProcess(void *self);
    static void onCoreError(void *self, uint32_t id, int sequence, int result, const char *message);

    void disconnect();
    static void onQuiet(void *self, uint64_t expirations);
    void setPaused(bool isPaused);
    void takeBuffers();
    void setRefreshTimer(std::chrono::milliseconds delay);

    CastStream *const m_stream;
    const PipeWireLibrary &m_library;
    pw_thread_loop *m_loop = nullptr;
    pw_context *m_context = nullptr;
    pw_core *m_core = nullptr;
    pw_stream *m_pipeWireStream = nullptr;
    spa_source *m_refreshTimer = nullptr;
    spa_hook m_coreHook{};
    spa_hook m_streamHook{};
    spa_video_info_raw m_format{}; // of the loop's thread, as what follows
    bool m_hasPicture = false;
    bool m_hasPointerBuffers = false; // some without a picture have come
    std::chrono::milliseconds m_refreshDelay = kFirstRefresh;
};

void CastStream::Private::connect(int remote, quint32 node)
{
    static const pw_core_events coreEvents = [] {
        pw_core_events events{};
        events.version = PW_VERSION_CORE_EVENTS;
        events.error = onCoreError;
        return events;
    }();
    static const pw_stream_events streamEvents = [] {
        pw_stream_events events{};
        events.version = PW_VERSION_STREAM_EVENTS;
        events.state_changed = onState;
        events.param_changed = onParameter;
        events.process = onProcess;
        return events;
    }();
    m_loop = m_library.threadLoopNew("screen cast", nullptr);
    m_context = m_loop ? m_library.contextNew(m_library.threadLoopGetLoop(m_loop), nullptr, 0) : nullptr;
    m_core = m_context ? m_library.contextConnectFd(m_context, remote, nullptr, 0) : nullptr;
    m_pipeWireStream = m_core ? m_library.streamNew(m_core, "screen cast",
                                                    m_library.propertiesNewString("media.type=Video "
                                                                                  "media.category=Capture "
                                                                                  "media.role=Screen"))
                              : nullptr;
    if (!m_pipeWireStream) {
        setError(QStringLiteral("There is no connection to PipeWire: %1.").arg(systemError(errno)));
        return;
    }
    m_refreshTimer = pw_loop_add_timer(m_library.threadLoopGetLoop(m_loop), onQuiet, this);
    pw_core_add_listener(m_core, &m_coreHook, &coreEvents, this);
    m_library.streamAddListener(m_pipeWireStream, &m_streamHook, &streamEvents, this);
    CastFormatOffer offer;
    const spa_pod *parameters[] = {offer.formats()};
    const int result = m_library.streamConnect(m_pipeWireStream, PW_DIRECTION_INPUT, node,
                                               pw_stream_flags(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS),
                                               parameters, 1);
    if (result < 0 || m_library.threadLoopStart(m_loop) < 0)
        setError(QStringLiteral("The screen cast cannot be received: %1.").arg(systemError(-result)));
}

void CastStream::Private::disconnect()
{
    if (m_loop)
        m_library.threadLoopStop(m_loop);
    if (m_refreshTimer)
        pw_loop_destroy_source(m_library.threadLoopGetLoop(m_loop), m_refreshTimer);
    if (m_pipeWireStream) {
        spa_hook_remove(&m_streamHook);
        spa_hook_remove(&m_coreHook);
        m_library.streamDestroy(m_pipeWireStream);
    }
    if (m_core)
        m_library.coreDisconnect(m_core);
    if (m_context)
        m_library.contextDestroy(m_context);
    if (m_loop)
        m_library.threadLoopDestroy(m_loop);
}

void CastStream::Private::setError(const QString &newError)
{
    {
        const std::lock_guard lock(mutex);
        if (!error.isEmpty())
            return;
        error = newError;
    }
    qCWarning(logScreen, "[CastStream] %s", qUtf8Printable(newError));
    emit m_stream->ended();
}

void CastStream::Private::setPaused(bool isPaused)
{
    const std::lock_guard lock(mutex);
    if (!isPaused)
        pausedSince.reset();
    else if (!pausedSince)
        pausedSince = SteadyClock::now();
}

void CastStream::Private::onState(void *self, pw_stream_state before, pw_stream_state now, const char *error)
{
    auto *const d = static_cast<Private *>(self);
    if (now == PW_STREAM_STATE_ERROR)
        d->setError(QStringLiteral("The screen cast has failed: %1.").arg(QString::fromUtf8(error)));
    else if (now == PW_STREAM_STATE_UNCONNECTED)
        d->setError(QStringLiteral("PipeWire has ended the screen cast."));
    else if (now == PW_STREAM_STATE_STREAMING || before == PW_STREAM_STATE_STREAMING)
        d->setPaused(now != PW_STREAM_STATE_STREAMING);
}

void CastStream::Private::onCoreError(void *self, uint32_t id, int, int result, const char *message)
{
    if (id == PW_ID_CORE && result == -EPIPE)
        static_cast<Private *>(self)->setError(QStringLiteral("The connection to PipeWire is lost."));
    else
        qCWarning(logScreen, "[CastStream] PipeWire reports: %s", message);
}

void CastStream::Private::onParameter(void *self, uint32_t id, const spa_pod *parameter)
{
    auto *const d = static_cast<Private *>(self);
    if (id != SPA_PARAM_Format || !parameter)
        return;
    d->m_format = videoFormat(parameter);
    CastBufferOffer offer;
    std::vector<const spa_pod *> parameters = offer.parameters();
    d->m_library.streamUpdateParams(d->m_pipeWireStream, parameters.data(), uint32_t(parameters.size()));
}

void CastStream::Private::onProcess(void *self)
{
    static_cast<Private *>(self)->takeBuffers();
}

void CastStream::Private::takeBuffers()
{
    while (pw_buffer *buffer = m_library.streamDequeueBuffer(m_pipeWireStream)) {
        const CastFrame frame = readCastFrame(*buffer->buffer, m_format);
        const bool isNew = picture.update(frame);
        if (isNew)
            m_refreshDelay = kFirstRefresh;
        m_hasPointerBuffers |= frame.picture.isNull();
        const bool mayLackSomething = m_hasPointerBuffers && (isNew || frame.picture.isNull());
        setRefreshTimer(mayLackSomething ? m_refreshDelay : std::chrono::milliseconds(0));
        m_library.streamQueueBuffer(m_pipeWireStream, buffer);
    }
    if (!m_hasPicture && !picture.size().isEmpty()) {
        m_hasPicture = true;
        emit m_stream->pictureArrived();
    }
}

/// Zero stops it.
void CastStream::Private::setRefreshTimer(std::chrono::milliseconds delay)
{
    using namespace std::chrono;
    timespec time{duration_cast<seconds>(delay).count(), nanoseconds(delay % seconds(1)).count()};
    pw_loop_update_timer(m_library.threadLoopGetLoop(m_loop), m_refreshTimer, &time, nullptr, false);
}

void CastStream::Private::onQuiet(void *self, uint64_t)
{
    auto *const d = static_cast<Private *>(self);
    d->m_refreshDelay = std::min(2 * d->m_refreshDelay, kRarestRefresh);
    d->m_library.streamSetActive(d->m_pipeWireStream, false);
    d->m_library.streamSetActive(d->m_pipeWireStream, true);
    d->setRefreshTimer(d->m_refreshDelay);
}

CastStream::CastStream(int remote, quint32 node)
    : d(std::make_unique<Private>(this))
{
    d->connect(remote, node);
}

CastStream::~CastStream() = default;

const CastPicture &CastStream::picture() const
{
    return d->picture;
}

void CastStream::end(const QString &reason)
{
    d->setError(reason);
}

QString CastStream::errorString() const
{
    const std::lock_guard lock(d->mutex);
    if (!d->error.isEmpty() || !d->pausedSince || SteadyClock::now() - *d->pausedSince < kMaxPause)
        return d->error;
    return QStringLiteral("The desktop no longer sends pictures of the screen.");
}

bool CastStream::isPaused() const
{
    const std::lock_guard lock(d->mutex);
    return d->pausedSince && SteadyClock::now() - *d->pausedSince > kNoticeablePause;
}

} // namespace kel
