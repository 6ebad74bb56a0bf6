#pragma once

#include "coreaudio/pulse/PulseConnection.h"
#include "coreaudio/sdk/AudioInterfaces.h"
#include "coreaudio/sdk/ComObject.h"

namespace kel
{

/// An output or an input of the sound server.
class PulseDevice : public ComObject<IMMDevice, IID_IMMDevice>
{
public:
    /// `source` is the source to record: the monitor of an output, or the input itself.
    PulseDevice(std::shared_ptr<PulseConnection> connection, PulseConnection::Source source, EDataFlow flow);

    HRESULT STDMETHODCALLTYPE Activate(REFIID interfaceId, DWORD context, PROPVARIANT *parameters,
                                       void **object) override;
    HRESULT STDMETHODCALLTYPE OpenPropertyStore(DWORD, IPropertyStore **) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetId(LPWSTR *) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetState(DWORD *state) override;

private:
    const std::shared_ptr<PulseConnection> m_connection;
    const PulseConnection::Source m_source;
    const EDataFlow m_flow;
};

} // namespace kel
