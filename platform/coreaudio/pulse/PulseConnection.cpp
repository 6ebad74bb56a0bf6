#include "coreaudio/pulse/PulseConnection.h"

namespace kel
{

namespace
{
constexpr pa_usec_t kReplyTimeoutUs = 3 * PA_USEC_PER_SEC;

std::string text(const char *given)
{
    return given ? given : std::string();
}

struct SourceReply {
    std::optional<PulseConnection::Source> source;
    std::string monitorOf;
    std::string master; ///< the source that a virtual one is made from
};

void onSourceInfo(pa_context *, const pa_source_info *info, int, void *reply)
{
    if (!info)
        return;
    auto &taken = *static_cast<SourceReply *>(reply);
    taken.source = {text(info->name), info->sample_spec, info->channel_map, {}};
    taken.monitorOf = text(info->monitor_of_sink_name);
    taken.master = text(pa_proplist_gets(info->proplist, PA_PROP_DEVICE_MASTER_DEVICE));
}

void onSinkInfo(pa_context *, const pa_sink_info *info, int, void *reply)
{
    if (info && info->monitor_source_name)
        *static_cast<std::optional<PulseConnection::Source> *>(reply) = {
            info->monitor_source_name, info->sample_spec, info->channel_map, {}};
}
} // namespace

std::shared_ptr<PulseConnection> PulseConnection::open()
{
    std::shared_ptr<PulseConnection> connection(new PulseConnection);
    if (!connection->connect())
        return nullptr;
    return connection;
}

PulseConnection::~PulseConnection()
{
    if (m_context) {
        const Lock lock(*this);
        pa_context_set_state_callback(m_context, nullptr, nullptr);
        pa_context_disconnect(m_context);
        pa_context_unref(m_context);
    }
    if (m_loop) {
        pa_threaded_mainloop_stop(m_loop);
        pa_threaded_mainloop_free(m_loop);
    }
}

bool PulseConnection::connect()
{
    m_loop = pa_threaded_mainloop_new();
    if (!m_loop || pa_threaded_mainloop_start(m_loop) < 0)
        return false;
    const Lock lock(*this);
    m_context = pa_context_new(pa_threaded_mainloop_get_api(m_loop), "KelMovie");
    if (!m_context)
        return false;
    pa_context_set_state_callback(
        m_context, [](pa_context *, void *connection) { static_cast<PulseConnection *>(connection)->signal(); }, this);
    if (pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        return false;
    return wait([this] { return pa_context_get_state(m_context) == PA_CONTEXT_READY; });
}

bool PulseConnection::isAlive() const
{
    return PA_CONTEXT_IS_GOOD(pa_context_get_state(m_context));
}

bool PulseConnection::wait(const std::function<bool()> &isDone) const
{
    struct Limit {
        const PulseConnection *connection;
        bool isReached = false;
    } limit{this};
    pa_time_event *timer = pa_context_rttime_new(
        m_context, pa_rtclock_now() + kReplyTimeoutUs,
        [](pa_mainloop_api *, pa_time_event *, const timeval *, void *data) {
            auto &reached = *static_cast<Limit *>(data);
            reached.isReached = true;
            reached.connection->signal();
        },
        &limit);
    if (!timer)
        return isDone();
    while (!isDone() && isAlive() && !limit.isReached)
        pa_threaded_mainloop_wait(m_loop);
    pa_threaded_mainloop_get_api(m_loop)->time_free(timer);
    return isDone();
}

/// Waits for the operation's last reply. False for a null `operation`, which means that it could not be sent.
bool PulseConnection::finish(pa_operation *operation) const
{
    if (!operation)
        return false;
    pa_operation_set_state_callback(
        operation, [](pa_operation *, void *connection) { static_cast<const PulseConnection *>(connection)->signal(); },
        const_cast<PulseConnection *>(this));
    const bool isDone = wait([operation] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING; });
    pa_operation_set_state_callback(operation, nullptr, nullptr);
    if (!isDone)
        pa_operation_cancel(operation); // a late reply would write to variables that no longer exist
    pa_operation_unref(operation);
    return isDone;
}

PulseConnection::Defaults PulseConnection::defaults() const
{
    Defaults defaults;
    finish(pa_context_get_server_info(
        m_context,
        [](pa_context *, const pa_server_info *info, void *reply) {
            if (info)
                *static_cast<Defaults *>(reply) = {text(info->default_sink_name), text(info->default_source_name)};
        },
        &defaults));
    return defaults;
}

std::optional<PulseConnection::Source> PulseConnection::defaultMonitor() const
{
    const Lock lock(*this);
    std::optional<Source> monitor;
    const std::string sink = defaults().sink;
    if (!sink.empty())
        finish(pa_context_get_sink_info_by_name(m_context, sink.c_str(), onSinkInfo, &monitor));
    return monitor;
}

std::optional<PulseConnection::Source> PulseConnection::defaultMicrophone() const
{
    const Lock lock(*this);
    const Defaults names = defaults();
    const auto find = [this](const std::string &name) {
        SourceReply reply;
        if (!name.empty())
            finish(pa_context_get_source_info_by_name(m_context, name.c_str(), onSourceInfo, &reply));
        return reply;
    };
    SourceReply reply = find(names.source);
    if (reply.source)
        reply.source->sink = find(reply.master).monitorOf;
    if (!reply.monitorOf.empty() && reply.monitorOf == names.sink)
        return std::nullopt;
    return reply.source;
}

} // namespace kel
