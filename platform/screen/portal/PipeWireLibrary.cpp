#include "screen/portal/PipeWireLibrary.h"

#include <QLibrary>

namespace kel
{

const PipeWireLibrary &PipeWireLibrary::instance()
{
    static const PipeWireLibrary library;
    return library;
}

PipeWireLibrary::PipeWireLibrary()
{
    QLibrary library(QStringLiteral("pipewire-0.3"), 0);
    decltype(&pw_init) init = nullptr;
    const auto resolve = [this, &library](const char *symbol, auto &function) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(library.resolve(symbol));
        if (!function && error.isEmpty())
            error = QStringLiteral("PipeWire (libpipewire-0.3.so.0) cannot be loaded: %1").arg(library.errorString());
    };
    resolve("pw_init", init);
    resolve("pw_context_connect_fd", contextConnectFd);
    resolve("pw_context_destroy", contextDestroy);
    resolve("pw_context_new", contextNew);
    resolve("pw_core_disconnect", coreDisconnect);
    resolve("pw_properties_new_string", propertiesNewString);
    resolve("pw_stream_add_listener", streamAddListener);
    resolve("pw_stream_connect", streamConnect);
    resolve("pw_stream_dequeue_buffer", streamDequeueBuffer);
    resolve("pw_stream_destroy", streamDestroy);
    resolve("pw_stream_new", streamNew);
    resolve("pw_stream_queue_buffer", streamQueueBuffer);
    resolve("pw_stream_set_active", streamSetActive);
    resolve("pw_stream_update_params", streamUpdateParams);
    resolve("pw_thread_loop_destroy", threadLoopDestroy);
    resolve("pw_thread_loop_get_loop", threadLoopGetLoop);
    resolve("pw_thread_loop_lock", threadLoopLock);
    resolve("pw_thread_loop_new", threadLoopNew);
    resolve("pw_thread_loop_start", threadLoopStart);
    resolve("pw_thread_loop_stop", threadLoopStop);
    resolve("pw_thread_loop_unlock", threadLoopUnlock);
    if (error.isEmpty())
        init(nullptr, nullptr);
}

} // namespace kel
