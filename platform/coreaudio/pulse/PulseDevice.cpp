#include "coreaudio/pulse/PulseDevice.h"

#include "coreaudio/pulse/PulseAudioClient.h"

#include <utility>

namespace kel
{

PulseDevice::PulseDevice(std::shared_ptr<PulseConnection> connection, PulseConnection::Source source, EDataFlow flow)
    : m_connection(std::move(connection))
    , m_source(std::move(source))
    , m_flow(flow)
{
}

HRESULT PulseDevice::Activate(REFIID interfaceId, DWORD, PROPVARIANT *, void **object)
{
    auto *client = new PulseAudioClient(m_connection, m_source, m_flow);
    const HRESULT result = client->QueryInterface(interfaceId, object);
    client->Release();
    return result;
}

HRESULT PulseDevice::GetState(DWORD *state)
{
    if (!state)
        return E_POINTER;
    *state = DEVICE_STATE_ACTIVE;
    return S_OK;
}

} // namespace kel
