#include "audio/capture/CaptureDependencies.h"

#include <QElapsedTimer>
#include <QThread>

namespace kel
{

namespace
{
/// Short against a device's buffer, and long enough that looking for packets costs next to nothing.
constexpr unsigned long RestMs = 20;
} // namespace

CaptureDependencies::CaptureDependencies()
    : createEnumerator([](IMMDeviceEnumerator **enumerator) {
        return CoCreateInstance(CLSID_MMDeviceEnumerator, nullptr, CLSCTX_ALL, IID_IMMDeviceEnumerator,
                                reinterpret_cast<void **>(enumerator));
    })
    , nowMs([] {
        QElapsedTimer timer;
        timer.start();
        return timer.msecsSinceReference();
    })
    , rest([] { QThread::msleep(RestMs); })
{
}

} // namespace kel
