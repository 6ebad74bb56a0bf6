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

/// How much slower than the system clock a device's clock may run.
constexpr double kClockTolerance = 0.0003;
constexpr double kGapUs = PA_USEC_PER_SEC;
} // namespace

std::shared_ptr<PulseRecordStream> PulseRecordStream::open(std::shared_ptr<PulseConnection> connection,
                                                           const PulseConnection::Source &source,
                                                           const pa_sample_spec &format)
{
    std::shared_ptr<PulseRecordStream> stream(new PulseRecordStream(std::move(connection), format));
    if (!stream->connect(source))
        return nullptr;
    return stream;
}

PulseRecordStream::PulseRecordStream(std::shared_ptr<PulseConnection> connection, const pa_sample_spec &format)
    : m_connection(std::move(connection))
    , m_format(format)
    , m_frameSize(std::uint32_t(pa_frame_size(&format)))
{
}

PulseRecordStream::~PulseRecordStream()
{
    if (!m_stream)
        return;
    const PulseConnection::Lock lock(*m_connection);
    pa_stream_set_state_callback(m_stream, nullptr, nullptr);
    pa_stream_set_suspended_callback(m_stream, nullptr, nullptr);
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
        m_stream, [](pa_stream *, void *stream) { static_cast<PulseRecordStream *>(stream)->m_firstFrameUs = 0; },
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
    packet.recordedAtNs100 = recordedAtUs() * 10;
    return packet;
}

/// The data in the buffer was recorded up to now, or earlier when its delivery was delayed. The device records at a
/// constant rate, so the packets with the shortest delay determine the time of all others.
std::uint64_t PulseRecordStream::recordedAtUs()
{
    const double now = double(pa_rtclock_now());
    const double waiting = double(pa_bytes_to_usec(pa_stream_readable_size(m_stream), &m_format));
    const double read = double(m_framesRead) * PA_USEC_PER_SEC / m_format.rate;
    const double latest = now - waiting - read;
    const double drift = double(kPacketUs) * kClockTolerance;
    if (m_firstFrameUs == 0 || std::abs(latest - m_firstFrameUs) > kGapUs)
        m_firstFrameUs = latest;
    else
        m_firstFrameUs = std::min(m_firstFrameUs + drift, latest);
    return std::uint64_t(m_firstFrameUs + read);
}

void PulseRecordStream::drop(std::uint32_t frames)
{
    const PulseConnection::Lock lock(*m_connection);
    pa_stream_drop(m_stream);
    m_framesRead += frames;
}

} // namespace kel
