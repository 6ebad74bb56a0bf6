#pragma once

#include "audio/capture/CaptureDependencies.h"

#include <coreaudio/CoreAudio.h>

#include <QStringList>

#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <vector>

/// A device with its enumerator and clients, and a clock that the test advances.
///
/// The device makes a packet for every 10 ms of the clock. With 1000 mono float samples a second, the value of a sample
/// is the clock's time in ms at which it was "played".
class ScriptedAudioDevice
{
public:
    static constexpr int kStepMs = 10;
    static constexpr int kRate = 1000;

    enum class Mode {
        Idle,     ///< nothing is played, so there are no packets
        Playing,  ///< a packet every 10 ms
        Silenced, ///< the same, but the packets are flagged as silent
        Stalled,  ///< packets are made, but delivered only when this mode ends; the system does not respond
        Gone,     ///< unplugged: every call fails
        Hung      ///< calls do not return until this mode ends
    };

    ScriptedAudioDevice()
    {
        mix.Format.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
        mix.Format.nChannels = 1;
        mix.Format.nSamplesPerSec = kRate;
        mix.Format.nBlockAlign = sizeof(float);
        mix.Format.nAvgBytesPerSec = kRate * sizeof(float);
        mix.Format.wBitsPerSample = 32;
        mix.Format.cbSize = sizeof(WAVEFORMATEXTENSIBLE) - sizeof(WAVEFORMATEX);
        mix.SubFormat = KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
    }

    // Set before the capture starts.
    WAVEFORMATEXTENSIBLE mix{};
    bool refusesInt16 = false;  ///< does not convert floats
    bool acceptsEvents = false; ///< and never sets the event

    kel::CaptureDependencies dependencies()
    {
        kel::CaptureDependencies dependencies;
        dependencies.createEnumerator = [this](IMMDeviceEnumerator **enumerator) {
            *enumerator = &m_enumerator;
            return answer("CoCreateInstance");
        };
        dependencies.nowMs = [this] {
            const std::lock_guard lock(m_mutex);
            return m_nowMs;
        };
        dependencies.rest = [this] { rest(); };
        return dependencies;
    }

    void setMode(Mode mode)
    {
        const std::lock_guard lock(m_mutex);
        m_mode = mode;
        m_changed.notify_all();
    }

    /// Whether the capture is in a call that does not return.
    bool isHanging() const
    {
        const std::lock_guard lock(m_mutex);
        return m_hangingCalls > 0;
    }

    /// Has every call with this name fail; none if it is empty.
    void setFailing(const QString &call)
    {
        const std::lock_guard lock(m_mutex);
        m_failing = call;
    }

    /// Advances the clock and waits until the capture has taken all packets; without a capture, only advances it.
    void advance(qint64 ms, bool isCaptured = true)
    {
        std::unique_lock lock(m_mutex);
        m_grantedMs += ms;
        m_isResting = false;
        m_changed.notify_all();
        if (!isCaptured)
            m_nowMs = m_grantedMs;
        else if (!m_changed.wait_for(lock, std::chrono::seconds(20),
                                     [this] { return m_nowMs == m_grantedMs && m_isResting; }))
            m_calls << "(not captured)";
    }

    /// The calls so far, except those for packets.
    QStringList calls() const
    {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }

private:
    using Lock = std::lock_guard<std::mutex>;

    HRESULT answer(const QString &call)
    {
        std::unique_lock lock(m_mutex);
        m_calls << call;
        waitWhileHung(lock);
        return m_mode == Mode::Gone || call.startsWith("(") || call == m_failing ? E_FAIL : S_OK;
    }

    void waitWhileHung(std::unique_lock<std::mutex> &lock)
    {
        ++m_hangingCalls;
        m_changed.wait(lock, [this] { return m_mode != Mode::Hung; });
        --m_hangingCalls;
    }

    void rest()
    {
        std::unique_lock lock(m_mutex);
        if (m_nowMs == m_grantedMs) {
            m_isResting = true;
            m_changed.notify_all();
            // The capture may have been asked to stop meanwhile.
            m_changed.wait_for(lock, std::chrono::milliseconds(5), [this] { return m_nowMs < m_grantedMs; });
            return;
        }
        if (m_isStarted && (m_mode == Mode::Playing || m_mode == Mode::Silenced || m_mode == Mode::Stalled))
            makePacket();
        m_nowMs += kStepMs;
    }

    void makePacket()
    {
        Packet packet;
        packet.recordedAtMs = m_nowMs;
        packet.flags = m_mode == Mode::Silenced ? AUDCLNT_BUFFERFLAGS_SILENT : 0;
        for (int i = 0; i < kStepMs; ++i)
            packet.samples.push_back(float(m_nowMs + i));
        m_packets.push_back(packet);
    }

    template <typename Interface>
    struct Object : Interface {
        Object(ScriptedAudioDevice &script, const char *objectName)
            : device(script)
            , name(objectName)
        {
        }
        virtual ~Object() = default;
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void **) override { return E_NOINTERFACE; }
        ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
        ULONG STDMETHODCALLTYPE Release() override
        {
            const Lock lock(device.m_mutex);
            device.m_calls << QString("Release %1").arg(QLatin1String(name));
            return 0;
        }
        ScriptedAudioDevice &device;
        const char *const name;
    };

    struct Enumerator final : Object<IMMDeviceEnumerator> {
        using Object::Object;
        HRESULT STDMETHODCALLTYPE GetDefaultAudioEndpoint(EDataFlow flow, ERole role, IMMDevice **endpoint) override
        {
            *endpoint = &device.m_device;
            return device.answer(QString("GetDefaultAudioEndpoint %1 %2").arg(flow).arg(role));
        }
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
    };

    struct Device final : Object<IMMDevice> {
        using Object::Object;
        HRESULT STDMETHODCALLTYPE Activate(REFIID interfaceId, DWORD, PROPVARIANT *, void **object) override
        {
            *object = static_cast<IAudioClient *>(&device.m_client);
            return interfaceId == IID_IAudioClient ? device.answer("Activate") : E_NOINTERFACE;
        }
        HRESULT STDMETHODCALLTYPE OpenPropertyStore(DWORD, IPropertyStore **) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetId(LPWSTR *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetState(DWORD *) override { return E_NOTIMPL; }
    };

    struct Client final : Object<IAudioClient> {
        using Object::Object;
        HRESULT STDMETHODCALLTYPE Initialize(AUDCLNT_SHAREMODE mode, DWORD flags, REFERENCE_TIME duration,
                                             REFERENCE_TIME periodicity, const WAVEFORMATEX *format, LPCGUID) override
        {
            const HRESULT result = device.answer(QString("Initialize %1 %2 %3 %4, tag %5, %6 bits")
                                                     .arg(mode)
                                                     .arg(flags, 0, 16)
                                                     .arg(duration)
                                                     .arg(periodicity)
                                                     .arg(format->wFormatTag)
                                                     .arg(format->wBitsPerSample));
            return device.refusesInt16 && format->wBitsPerSample == 16 ? AUDCLNT_E_UNSUPPORTED_FORMAT : result;
        }
        HRESULT STDMETHODCALLTYPE GetBufferSize(UINT32 *) override { return device.answer("GetBufferSize"); }
        HRESULT STDMETHODCALLTYPE GetMixFormat(WAVEFORMATEX **format) override
        {
            *format = static_cast<WAVEFORMATEX *>(CoTaskMemAlloc(sizeof device.mix));
            std::memcpy(*format, &device.mix, sizeof device.mix);
            return device.answer("GetMixFormat");
        }
        HRESULT STDMETHODCALLTYPE Start() override
        {
            const HRESULT result = device.answer("Start");
            const Lock lock(device.m_mutex);
            device.m_isStarted = SUCCEEDED(result);
            return result;
        }
        HRESULT STDMETHODCALLTYPE Stop() override { return device.answer("Stop"); }
        ULONG STDMETHODCALLTYPE Release() override
        {
            {
                const Lock lock(device.m_mutex);
                device.m_isStarted = false;
            }
            return Object::Release();
        }
        HRESULT STDMETHODCALLTYPE GetService(REFIID, void **object) override
        {
            *object = static_cast<IAudioCaptureClient *>(&device.m_capture);
            const HRESULT result = device.answer("GetService");
            if (FAILED(result))
                *object = nullptr;
            return result;
        }
        HRESULT STDMETHODCALLTYPE SetEventHandle(HANDLE) override
        {
            device.answer("SetEventHandle");
            return device.acceptsEvents ? S_OK : E_FAIL;
        }
        HRESULT STDMETHODCALLTYPE GetStreamLatency(REFERENCE_TIME *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetCurrentPadding(UINT32 *) override
        {
            const Lock lock(device.m_mutex);
            return device.m_mode == Mode::Stalled ? AUDCLNT_E_SERVICE_NOT_RUNNING : S_OK;
        }
        HRESULT STDMETHODCALLTYPE IsFormatSupported(AUDCLNT_SHAREMODE, const WAVEFORMATEX *, WAVEFORMATEX **) override
        {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE GetDevicePeriod(REFERENCE_TIME *, REFERENCE_TIME *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
    };

    struct Capture final : Object<IAudioCaptureClient> {
        using Object::Object;
        HRESULT STDMETHODCALLTYPE GetBuffer(BYTE **data, UINT32 *frames, DWORD *flags, UINT64 *, UINT64 *time) override
        {
            std::unique_lock lock(device.m_mutex);
            device.waitWhileHung(lock);
            *frames = 0;
            if (device.m_mode == Mode::Gone)
                return AUDCLNT_E_DEVICE_INVALIDATED;
            if (device.m_mode == Mode::Stalled || device.m_packets.empty())
                return AUDCLNT_S_BUFFER_EMPTY;
            Packet &packet = device.m_packets.front();
            *data = reinterpret_cast<BYTE *>(packet.samples.data());
            *frames = UINT32(packet.samples.size());
            *flags = packet.flags;
            *time = UINT64(packet.recordedAtMs) * 10'000;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE ReleaseBuffer(UINT32 frames) override
        {
            const Lock lock(device.m_mutex);
            if (device.m_packets.empty() || frames != device.m_packets.front().samples.size())
                return AUDCLNT_E_OUT_OF_ORDER;
            device.m_packets.pop_front();
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE GetNextPacketSize(UINT32 *) override { return E_NOTIMPL; }
    };

    struct Packet {
        qint64 recordedAtMs = 0;
        DWORD flags = 0;
        std::vector<float> samples;
    };

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    qint64 m_nowMs = 1'000'000;
    qint64 m_grantedMs = m_nowMs;
    bool m_isResting = false;
    bool m_isStarted = false;
    int m_hangingCalls = 0;
    QString m_failing = "(none)";
    Mode m_mode = Mode::Idle;
    std::deque<Packet> m_packets;
    QStringList m_calls;
    Enumerator m_enumerator{*this, "enumerator"};
    Device m_device{*this, "device"};
    Client m_client{*this, "client"};
    Capture m_capture{*this, "capture"};
};
