#include "coreaudio/sdk/Com.h"

#include "coreaudio/pulse/PulseDeviceEnumerator.h"
#include "coreaudio/sdk/AudioInterfaces.h"

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <new>

using namespace kel;

namespace
{
struct Event {
    std::mutex mutex;
    std::condition_variable changed;
    bool isSet = false;
    bool isManual = false;
};
} // namespace

HRESULT CoInitialize(LPVOID)
{
    return S_OK;
}

void CoUninitialize() {}

HRESULT CoCreateInstance(REFCLSID classId, IUnknown *outer, DWORD, REFIID interfaceId, LPVOID *object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (outer || !(classId == CLSID_MMDeviceEnumerator))
        return REGDB_E_CLASSNOTREG;
    return PulseDeviceEnumerator::create(interfaceId, object);
}

LPVOID CoTaskMemAlloc(std::size_t size)
{
    return std::malloc(size);
}

void CoTaskMemFree(LPVOID memory)
{
    std::free(memory);
}

HANDLE CreateEventA(void *, BOOL manualReset, BOOL initialState, LPCSTR)
{
    auto *event = new (std::nothrow) Event;
    if (event) {
        event->isManual = manualReset;
        event->isSet = initialState;
    }
    return event;
}

BOOL SetEvent(HANDLE handle)
{
    auto *event = static_cast<Event *>(handle);
    std::lock_guard lock(event->mutex);
    event->isSet = true;
    event->changed.notify_all();
    return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD timeoutMs)
{
    auto *event = static_cast<Event *>(handle);
    std::unique_lock lock(event->mutex);
    if (!event->changed.wait_for(lock, std::chrono::milliseconds(timeoutMs), [event] { return event->isSet; }))
        return WAIT_TIMEOUT;
    event->isSet = event->isManual;
    return WAIT_OBJECT_0;
}

BOOL CloseHandle(HANDLE handle)
{
    delete static_cast<Event *>(handle);
    return TRUE;
}
