#include "audio/capture/CaptureDependencies.h"

#include <QElapsedTimer>
#include <QThread>

namespace kel
{

namespace
{
/// Short compared to the buffer of a device, and long enough that polling costs almost no CPU time.
constexpr unsigned long kRestMs = 20;
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
    , rest([] { QThread::msleep(kRestMs); })
{
}

} // namespace kel
