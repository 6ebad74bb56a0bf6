#pragma once

#include "coreaudio/sdk/Com.h"

#include <atomic>

/// Reference counting for an object with one interface. The count starts at one; the last Release deletes the object.
template <typename Interface, const IID &InterfaceId>
class ComObject : public Interface
{
public:
    ComObject() = default;
    ComObject(const ComObject &) = delete;
    ComObject &operator=(const ComObject &) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void **object) override
    {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        if (!(interfaceId == InterfaceId) && !(interfaceId == IID_IUnknown))
            return E_NOINTERFACE;
        AddRef();
        *object = static_cast<Interface *>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const ULONG left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }

protected:
    virtual ~ComObject() = default;

private:
    std::atomic<ULONG> m_references{1};
};
