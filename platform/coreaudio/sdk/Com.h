#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/// The parts of COM and of kernel events that Core Audio needs, with the names and semantics of the SDK.

#define STDMETHODCALLTYPE

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using UINT32 = std::uint32_t;
using UINT64 = std::uint64_t;
using ULONG = std::uint32_t;
using LPVOID = void *;
using LPWSTR = wchar_t *;
using LPCWSTR = const wchar_t *;
using LPCSTR = const char *;
using HANDLE = void *;
using HRESULT = std::int32_t;

constexpr BOOL FALSE = 0;
constexpr BOOL TRUE = 1;

constexpr bool SUCCEEDED(HRESULT result)
{
    return result >= 0;
}
constexpr bool FAILED(HRESULT result)
{
    return result < 0;
}

constexpr HRESULT S_OK = 0;
constexpr HRESULT E_NOTIMPL = HRESULT(0x80004001);
constexpr HRESULT E_NOINTERFACE = HRESULT(0x80004002);
constexpr HRESULT E_POINTER = HRESULT(0x80004003);
constexpr HRESULT E_FAIL = HRESULT(0x80004005);
constexpr HRESULT E_OUTOFMEMORY = HRESULT(0x8007000E);
constexpr HRESULT E_INVALIDARG = HRESULT(0x80070057);
constexpr HRESULT E_NOTFOUND = HRESULT(0x80070490);
constexpr HRESULT REGDB_E_CLASSNOTREG = HRESULT(0x80040154);

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID &;
using REFCLSID = const CLSID &;
using LPCGUID = const GUID *;

inline bool IsEqualGUID(const GUID &a, const GUID &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}
inline bool operator==(const GUID &a, const GUID &b)
{
    return IsEqualGUID(a, b);
}

struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void **object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

protected:
    ~IUnknown() = default; // objects are deleted by their last Release
};

inline constexpr IID IID_IUnknown{0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

constexpr DWORD CLSCTX_ALL = 0x17;

HRESULT CoInitialize(LPVOID reserved);
void CoUninitialize();
/// Creates the device enumerator, the only supported class. Fails after a few seconds when no sound server responds.
HRESULT CoCreateInstance(REFCLSID classId, IUnknown *outer, DWORD context, REFIID interfaceId, LPVOID *object);
LPVOID CoTaskMemAlloc(std::size_t size);
void CoTaskMemFree(LPVOID memory);

constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_TIMEOUT = 258;

/// An event. `attributes` and `name` are ignored.
HANDLE CreateEventA(void *attributes, BOOL manualReset, BOOL initialState, LPCSTR name);
BOOL SetEvent(HANDLE event);
DWORD WaitForSingleObject(HANDLE event, DWORD timeoutMs);
BOOL CloseHandle(HANDLE event);
