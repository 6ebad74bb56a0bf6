#include "coreaudio/pulse/PulseDeviceEnumerator.h"

#include "coreaudio/pulse/PulseDevice.h"

#include <utility>

namespace kel
{

HRESULT PulseDeviceEnumerator::create(REFIID interfaceId, void **object)
{
    std::shared_ptr<PulseConnection> connection = PulseConnection::open();
    if (!connection)
        return AUDCLNT_E_SERVICE_NOT_RUNNING;
    auto *enumerator = new PulseDeviceEnumerator(std::move(connection));
    const HRESULT result = enumerator->QueryInterface(interfaceId, object);
    enumerator->Release();
    return result;
}

PulseDeviceEnumerator::PulseDeviceEnumerator(std::shared_ptr<PulseConnection> connection)
    : m_connection(std::move(connection))
{
}

HRESULT PulseDeviceEnumerator::GetDefaultAudioEndpoint(EDataFlow flow, ERole, IMMDevice **device)
{
    if (!device)
        return E_POINTER;
    *device = nullptr;
    if (flow != eRender && flow != eCapture)
        return E_INVALIDARG;
    const std::optional<PulseConnection::Source> source =
        flow == eRender ? m_connection->defaultMonitor() : m_connection->defaultMicrophone();
    if (!source)
        return E_NOTFOUND;
    *device = new PulseDevice(m_connection, *source, flow);
    return S_OK;
}

} // namespace kel
