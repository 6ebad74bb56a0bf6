#pragma once

#include "coreaudio/sdk/Com.h"
#include "coreaudio/sdk/WaveFormat.h"

using REFERENCE_TIME = std::int64_t; ///< units of 100 ns

enum EDataFlow { eRender, eCapture, eAll };
enum ERole { eConsole, eMultimedia, eCommunications };
enum AUDCLNT_SHAREMODE { AUDCLNT_SHAREMODE_SHARED, AUDCLNT_SHAREMODE_EXCLUSIVE };

constexpr DWORD DEVICE_STATE_ACTIVE = 1;

constexpr DWORD AUDCLNT_STREAMFLAGS_LOOPBACK = 0x00020000;
constexpr DWORD AUDCLNT_STREAMFLAGS_EVENTCALLBACK = 0x00040000;
constexpr DWORD AUDCLNT_STREAMFLAGS_SRC_DEFAULT_QUALITY = 0x08000000;
constexpr DWORD AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM = 0x80000000;

constexpr DWORD AUDCLNT_BUFFERFLAGS_SILENT = 2;
constexpr DWORD AUDCLNT_BUFFERFLAGS_TIMESTAMP_ERROR = 4;

constexpr HRESULT AUDCLNT_S_BUFFER_EMPTY = 0x08890001;
constexpr HRESULT AUDCLNT_E_NOT_INITIALIZED = HRESULT(0x88890001);
constexpr HRESULT AUDCLNT_E_ALREADY_INITIALIZED = HRESULT(0x88890002);
constexpr HRESULT AUDCLNT_E_WRONG_ENDPOINT_TYPE = HRESULT(0x88890003);
constexpr HRESULT AUDCLNT_E_DEVICE_INVALIDATED = HRESULT(0x88890004);
constexpr HRESULT AUDCLNT_E_OUT_OF_ORDER = HRESULT(0x88890007);
constexpr HRESULT AUDCLNT_E_UNSUPPORTED_FORMAT = HRESULT(0x88890008);
constexpr HRESULT AUDCLNT_E_INVALID_SIZE = HRESULT(0x88890009);
constexpr HRESULT AUDCLNT_E_SERVICE_NOT_RUNNING = HRESULT(0x88890010);
constexpr HRESULT AUDCLNT_E_EVENTHANDLE_NOT_EXPECTED = HRESULT(0x88890011);

inline constexpr CLSID CLSID_MMDeviceEnumerator{
    0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};
inline constexpr IID IID_IMMDeviceEnumerator{
    0xA95664D2, 0x9614, 0x4F35, {0xA7, 0x46, 0xDE, 0x8D, 0xB6, 0x36, 0x17, 0xE6}};
inline constexpr IID IID_IMMDevice{0xD666063F, 0x1587, 0x4E43, {0x81, 0xF1, 0xB9, 0x48, 0xE8, 0x07, 0x36, 0x3F}};
inline constexpr IID IID_IAudioClient{0x1CB9AD4C, 0xDBFA, 0x4C32, {0xB1, 0x78, 0xC2, 0xF5, 0x68, 0xA7, 0x03, 0xB2}};
inline constexpr IID IID_IAudioCaptureClient{
    0xC8ADBD64, 0xE71E, 0x48A0, {0xA4, 0xDE, 0x18, 0x5C, 0x39, 0x5C, 0xD3, 0x17}};

struct IMMDeviceCollection;
struct IMMNotificationClient;
struct IPropertyStore;
struct PROPVARIANT;

struct IMMDevice : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Activate(REFIID interfaceId, DWORD context, PROPVARIANT *parameters,
                                               void **object) = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenPropertyStore(DWORD access, IPropertyStore **properties) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetId(LPWSTR *id) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetState(DWORD *state) = 0;

protected:
    ~IMMDevice() = default;
};

struct IMMDeviceEnumerator : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE EnumAudioEndpoints(EDataFlow flow, DWORD stateMask,
                                                         IMMDeviceCollection **devices) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDefaultAudioEndpoint(EDataFlow flow, ERole role, IMMDevice **device) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDevice(LPCWSTR id, IMMDevice **device) = 0;
    virtual HRESULT STDMETHODCALLTYPE RegisterEndpointNotificationCallback(IMMNotificationClient *client) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnregisterEndpointNotificationCallback(IMMNotificationClient *client) = 0;

protected:
    ~IMMDeviceEnumerator() = default;
};

struct IAudioClient : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Initialize(AUDCLNT_SHAREMODE mode, DWORD flags, REFERENCE_TIME bufferDuration,
                                                 REFERENCE_TIME periodicity, const WAVEFORMATEX *format,
                                                 LPCGUID session) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetBufferSize(UINT32 *frames) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetStreamLatency(REFERENCE_TIME *latency) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetCurrentPadding(UINT32 *frames) = 0;
    virtual HRESULT STDMETHODCALLTYPE IsFormatSupported(AUDCLNT_SHAREMODE mode, const WAVEFORMATEX *format,
                                                        WAVEFORMATEX **closest) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMixFormat(WAVEFORMATEX **format) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDevicePeriod(REFERENCE_TIME *usual, REFERENCE_TIME *minimum) = 0;
    virtual HRESULT STDMETHODCALLTYPE Start() = 0;
    virtual HRESULT STDMETHODCALLTYPE Stop() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetEventHandle(HANDLE event) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetService(REFIID interfaceId, void **object) = 0;

protected:
    ~IAudioClient() = default;
};

struct IAudioCaptureClient : IUnknown {
    /// Both positions are those of the packet's first frame: `devicePosition` in frames since the start of the stream,
    /// `counterPosition` on the performance counter in units of 100 ns.
    virtual HRESULT STDMETHODCALLTYPE GetBuffer(BYTE **data, UINT32 *frames, DWORD *flags, UINT64 *devicePosition,
                                                UINT64 *counterPosition) = 0;
    virtual HRESULT STDMETHODCALLTYPE ReleaseBuffer(UINT32 frames) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNextPacketSize(UINT32 *frames) = 0;

protected:
    ~IAudioCaptureClient() = default;
};
