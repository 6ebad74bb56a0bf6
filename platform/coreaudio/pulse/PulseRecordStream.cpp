#include "coreaudio/pulse/PulseRecordStream.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kel
{

namespace
{
// Short enough to detect a silence of a tenth of a second, long enough to keep the CPU load low.
constexpr pa_usec_t kPacketUs = 40 * PA_USEC_PER_MSEC;

/// How often the server is asked for the time of the stream, and after which time without an answer packets wait for
/// one.
constexpr double kTimingIntervalUs = 250 * PA_USEC_PER_MSEC;
constexpr double kTimingMaxAgeUs = 500 * PA_USEC_PER_MSEC;

/// Half a second of peeks. A count, because after a stall of this process the answer has yet to be read.
constexpr int kMaxUnansweredPeeks = 25;

/// How far statements of the same time may differ.
constexpr double kTimingJitterUs = 15 * PA_USEC_PER_MSEC;

/// How much slower than the system clock a device's clock may run.
constexpr double kClockTolerance = 0.0003;
} // namespace

std::shared_ptr<PulseRecordStream> PulseRecordStream::open(std::shared_ptr<PulseConnection> connection,
                                                           const PulseConnection::Source &source,
                                                           const pa_sample_spec &format)
{
    std::shared_ptr<PulseRecordStream> stream(new PulseRecordStream(std::move(connection), format, source.sink));
    if (!stream->connect(source))
        return nullptr;
    return stream;
}

PulseRecordStream::PulseRecordStream(std::shared_ptr<PulseConnection> connection, const pa_sample_spec &format,
                                     const std::string &sink)
    : m_connection(std::move(connection))
    , m_format(format)
    , m_frameSize(std::uint32_t(pa_frame_size(&format)))
    , m_sink(sink)
{
}

PulseRecordStream::~PulseRecordStream()
{
    if (!m_stream)
        return;
    const PulseConnection::Lock lock(*m_connection);
    if (m_timingRequest) {
        pa_operation_cancel(m_timingRequest);
        pa_operation_unref(m_timingRequest);
    }
    pa_stream_set_state_callback(m_stream, nullptr, nullptr);
    pa_stream_set_suspended_callback(m_stream, nullptr, nullptr);
    pa_stream_set_read_callback(m_stream, nullptr, nullptr);
    pa_stream_disconnect(m_stream);
    pa_stream_unref(m_stream);
}

bool PulseRecordStream::connect(const PulseConnection::Source &source)
{
    const PulseConnection::Lock lock(*m_connection);
    const pa_channel_map *channels = source.channels.channels == m_format.channels ? &source.channels : nullptr;
    m_stream = pa_stream_new(m_connection->context(), "Recording", &m_format, channels);
    if (!m_stream)
        return false;
    pa_stream_set_state_callback(
        m_stream, [](pa_stream *, void *connection) { static_cast<PulseConnection *>(connection)->signal(); },
        m_connection.get());
    pa_stream_set_suspended_callback(
        m_stream, [](pa_stream *, void *stream) { static_cast<PulseRecordStream *>(stream)->m_firstFrameUs.reset(); },
        this);
    pa_stream_set_read_callback(
        m_stream, [](pa_stream *, std::size_t, void *stream) { static_cast<PulseRecordStream *>(stream)->onData(); },
        this);
    pa_buffer_attr buffer;
    buffer.maxlength = std::uint32_t(-1); // the maximum of the server, so that a slow disk loses no sound
    buffer.tlength = buffer.prebuf = buffer.minreq = std::uint32_t(-1);
    buffer.fragsize = std::uint32_t(pa_usec_to_bytes(kPacketUs, &m_format));
    // Without DONT_MOVE the server would continue with the microphone when the output vanishes.
    const auto flags = pa_stream_flags_t(PA_STREAM_START_CORKED | PA_STREAM_DONT_MOVE | PA_STREAM_ADJUST_LATENCY);
    if (pa_stream_connect_record(m_stream, source.name.c_str(), &buffer, flags) < 0)
        return false;
    m_connection->wait([this] { return pa_stream_get_state(m_stream) != PA_STREAM_CREATING; });
    return pa_stream_get_state(m_stream) == PA_STREAM_READY;
}

bool PulseRecordStream::isAlive() const
{
    const PulseConnection::Lock lock(*m_connection);
    return pa_stream_get_state(m_stream) == PA_STREAM_READY;
}

bool PulseRecordStream::isAnswered() const
{
    const PulseConnection::Lock lock(*m_connection);
    return m_unansweredPeeks < kMaxUnansweredPeeks;
}

/// Does not wait for the reply: if the stream has died in the meantime, its state shows it.
bool PulseRecordStream::setCorked(bool isCorked)
{
    const PulseConnection::Lock lock(*m_connection);
    pa_operation *operation = pa_stream_cork(m_stream, isCorked, nullptr, nullptr);
    if (!operation)
        return false;
    pa_operation_unref(operation);
    return true;
}

std::uint32_t PulseRecordStream::bufferFrames() const
{
    const PulseConnection::Lock lock(*m_connection);
    const pa_buffer_attr *buffer = pa_stream_get_buffer_attr(m_stream);
    return buffer ? buffer->maxlength / m_frameSize : 0;
}

PulseRecordStream::Packet PulseRecordStream::peek()
{
    const PulseConnection::Lock lock(*m_connection);
    const double nowUs = double(pa_rtclock_now());
    if (!m_firstFrameUs || nowUs - m_timedAtUs > kTimingMaxAgeUs)
        requestTiming();
    m_unansweredPeeks = m_timingRequest ? m_unansweredPeeks + 1 : 0;
    if (!m_firstFrameUs || nowUs - m_timedAtUs > kTimingMaxAgeUs)
        return {};
    const void *data = nullptr;
    std::size_t size = 0;
    if (pa_stream_get_state(m_stream) != PA_STREAM_READY || pa_stream_peek(m_stream, &data, &size) < 0 || size == 0)
        return {};
    Packet packet;
    packet.frames = std::uint32_t(size / m_frameSize);
    packet.isSilent = !data;
    if (packet.isSilent) {
        m_silence.resize(std::max(m_silence.size(), size));
        data = m_silence.data();
    }
    packet.data = static_cast<const std::uint8_t *>(data);
    packet.firstFrame = m_framesRead;
    const double position = double(m_framesRead) * PA_USEC_PER_SEC / m_format.rate;
    packet.recordedAtNs100 = std::uint64_t((*m_firstFrameUs + position) * 10);
    return packet;
}

/// When sound has just arrived, what the server states is exact also if it records in larger steps.
void PulseRecordStream::onData()
{
    if (double(pa_rtclock_now()) - m_timedAtUs > kTimingIntervalUs)
        requestTiming();
}

void PulseRecordStream::requestTiming()
{
    if (m_timingRequest || pa_stream_get_state(m_stream) != PA_STREAM_READY)
        return;
    if (m_sink.empty()) {
        requestStreamTiming();
        return;
    }
    m_timingRequest = pa_context_get_sink_info_by_name(
        m_connection->context(), m_sink.c_str(),
        [](pa_context *, const pa_sink_info *info, int, void *stream) {
            static_cast<PulseRecordStream *>(stream)->onSinkInfo(info);
        },
        this);
}

/// Called with the information, and then with null.
void PulseRecordStream::onSinkInfo(const pa_sink_info *info)
{
    if (info) {
        m_sinkLatencyUs = info->latency;
        return;
    }
    pa_operation_unref(std::exchange(m_timingRequest, nullptr));
    requestStreamTiming();
}

void PulseRecordStream::requestStreamTiming()
{
    m_timingRequest = pa_stream_update_timing_info(
        m_stream,
        [](pa_stream *, int isKnown, void *stream) { static_cast<PulseRecordStream *>(stream)->onTiming(isKnown); },
        this);
}

/// When a packet arrives says little: server or recorder may have been held up, and then many arrive at once. The
/// server knows how much it recorded until when.
void PulseRecordStream::onTiming(bool isKnown)
{
    pa_operation_unref(std::exchange(m_timingRequest, nullptr));
    m_unansweredPeeks = 0;
    const pa_timing_info *timing = isKnown ? pa_stream_get_timing_info(m_stream) : nullptr;
    if (!timing)
        return;
    timeval now;
    pa_gettimeofday(&now);
    const double nowUs = double(pa_rtclock_now());
    const double statementAgeUs = double(pa_timeval_diff(&now, &timing->timestamp));
    const double recordedUs = double(pa_bytes_to_usec(std::uint64_t(timing->write_index), &m_format));
    // Sound waits in the source before it is recorded. A monitor records what its output plays only later, which a
    // virtual source made from it does not state.
    const double delayUs = double(timing->source_usec) - double(timing->sink_usec) - double(m_sinkLatencyUs);
    setTiming(nowUs - statementAgeUs - delayUs - recordedUs, nowUs);
}

/// A statement that differs from the time known so far has to be repeated. A server that was held up first makes one as
/// if it had recorded nothing meanwhile, although it will deliver that sound, too.
void PulseRecordStream::setTiming(double firstFrameUs, double nowUs)
{
    const auto isConfirmedBy = [firstFrameUs](const std::optional<double> &other) {
        return other && std::abs(firstFrameUs - *other) < kTimingJitterUs;
    };
    if (isConfirmedBy(m_firstFrameUs)) {
        // A statement is late if sound was recorded just before that it does not include.
        m_firstFrameUs = std::min(firstFrameUs, *m_firstFrameUs + (nowUs - m_timedAtUs) * kClockTolerance);
        m_timedAtUs = nowUs;
    } else if (isConfirmedBy(m_statedFirstFrameUs)) {
        m_firstFrameUs = firstFrameUs;
        m_timedAtUs = nowUs;
    }
    m_statedFirstFrameUs = firstFrameUs;
}

void PulseRecordStream::drop(std::uint32_t frames)
{
    const PulseConnection::Lock lock(*m_connection);
    pa_stream_drop(m_stream);
    m_framesRead += frames;
}

} // namespace kel
