#pragma once

#include <QString>

#include <pipewire/pipewire.h>

namespace kel
{

/// The functions of libpipewire that a screen cast needs. The library is loaded when it is first used, so that the
/// program also starts on a computer without it.
struct PipeWireLibrary {
    /// Loads the library at the first call. Any thread.
    static const PipeWireLibrary &instance();

    QString error; ///< why the library cannot be used, in English; empty when it can

    decltype(&pw_context_connect_fd) contextConnectFd = nullptr;
    decltype(&pw_context_destroy) contextDestroy = nullptr;
    decltype(&pw_context_new) contextNew = nullptr;
    decltype(&pw_core_disconnect) coreDisconnect = nullptr;
    decltype(&pw_properties_new_string) propertiesNewString = nullptr;
    decltype(&pw_stream_add_listener) streamAddListener = nullptr;
    decltype(&pw_stream_connect) streamConnect = nullptr;
    decltype(&pw_stream_dequeue_buffer) streamDequeueBuffer = nullptr;
    decltype(&pw_stream_destroy) streamDestroy = nullptr;
    decltype(&pw_stream_new) streamNew = nullptr;
    decltype(&pw_stream_queue_buffer) streamQueueBuffer = nullptr;
    decltype(&pw_stream_set_active) streamSetActive = nullptr;
    decltype(&pw_stream_update_params) streamUpdateParams = nullptr;
    decltype(&pw_thread_loop_destroy) threadLoopDestroy = nullptr;
    decltype(&pw_thread_loop_get_loop) threadLoopGetLoop = nullptr;
    decltype(&pw_thread_loop_lock) threadLoopLock = nullptr;
    decltype(&pw_thread_loop_new) threadLoopNew = nullptr;
    decltype(&pw_thread_loop_start) threadLoopStart = nullptr;
    decltype(&pw_thread_loop_stop) threadLoopStop = nullptr;
    decltype(&pw_thread_loop_unlock) threadLoopUnlock = nullptr;

private:
    PipeWireLibrary();
};

} // namespace kel
