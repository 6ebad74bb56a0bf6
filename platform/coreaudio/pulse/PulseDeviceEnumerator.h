#pragma once

#include "coreaudio/pulse/PulseConnection.h"
#include "coreaudio/sdk/AudioInterfaces.h"
#include "coreaudio/sdk/ComObject.h"

namespace kel
{

/// The default devices of the sound server. The server has no roles: every role has the same device.
class PulseDeviceEnumerator : public ComObject<IMMDeviceEnumerator, IID_IMMDeviceEnumerator>
{
public:
    /// Returns AUDCLNT_E_SERVICE_NOT_RUNNING when no sound server responds.
    static HRESULT create(REFIID interfaceId, void **object);

    HRESULT STDMETHODCALLTYPE GetDefaultAudioEndpoint(EDataFlow flow, ERole role, IMMDevice **device) override;

    // Only the default devices are available.
    HRESULT STDMETHODCALLTYPE EnumAudioEndpoints(EDataFlow, DWORD, IMMDeviceCollection **) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetDevice(LPCWSTR, IMMDevice **) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RegisterEndpointNotificationCallback(IMMNotificationClient *) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE UnregisterEndpointNotificationCallback(IMMNotificationClient *) override
    {
        return E_NOTIMPL;
    }

private:
    explicit PulseDeviceEnumerator(std::shared_ptr<PulseConnection> connection);

    const std::shared_ptr<PulseConnection> m_connection;
};

} // namespace kel
