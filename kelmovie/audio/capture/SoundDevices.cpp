#include "audio/capture/SoundDevices.h"

#include "audio/capture/CaptureDependencies.h"

#include <coreaudio/CoreAudio.h>

namespace kel
{

namespace
{

bool hasDefaultDevice(EDataFlow flow)
{
    const bool isInitialized = SUCCEEDED(CoInitialize(nullptr));
    IMMDeviceEnumerator *enumerator = nullptr;
    IMMDevice *device = nullptr;
    const bool isThere = SUCCEEDED(CaptureDependencies().createEnumerator(&enumerator)) &&
                         SUCCEEDED(enumerator->GetDefaultAudioEndpoint(flow, eConsole, &device)) && device;
    if (device)
        device->Release();
    if (enumerator)
        enumerator->Release();
    if (isInitialized)
        CoUninitialize();
    return isThere;
}

} // namespace

bool SoundDevices::hasMicrophone()
{
    return hasDefaultDevice(eCapture);
}

bool SoundDevices::hasSystemAudio()
{
    return hasDefaultDevice(eRender);
}

} // namespace kel
