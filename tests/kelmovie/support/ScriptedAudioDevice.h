#pragma once

#include "audio/capture/CaptureDependencies.h"

#include <coreaudio/CoreAudio.h>

#include <QByteArray>
#include <QStringList>

#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>

/// A device with its enumerator and clients, and a clock that the test advances.
///
/// The device makes a packet for every 10 ms of the clock, in the format that the capture asked for: its own, or one
/// that it converts to. All samples of a ms have the value sampleAt(), so that a recording shows when each was
/// "played".
class ScriptedAudioDevice
{
public:
    static constexpr int kStepMs = 10;
    static constexpr int kRate = 1000;
    static constexpr qint64 kStartMs = 1'000'000; ///< of the clock

    /// The sample that is played at this time of the clock; an exact 16-bit value.
    static float sampleAt(qint64 ms) { return float(ms - kStartMs + 1) / 32768; }

    enum class Mode {
        Idle,     ///< nothing is played, so there are no packets
        Playing,  ///< a packet every 10 ms
        Silenced, ///< the same, but the packets are flagged as silent
        Mistimed, ///< the times of the packets are wrong, and flagged as such
        Future,   ///< the times of the packets are impossible
        Ancient,
        Stalled, ///< packets are made, but delivered only when this mode ends; the system does not respond
        Gone,    ///< unplugged: every call fails
        Hung     ///< calls do not return until this mode ends
    };

    ScriptedAudioDevice() { setFormat(WAVE_FORMAT_EXTENSIBLE, 32); }

    // Set before the capture starts, or while the device is gone.
    bool refusesInt16 = false;  ///< does not convert floats, unless asked to convert everything
    bool acceptsEvents = false; ///< and sets the event for each packet
    void setFormat(int tag, int bits, int rate = kRate, int channels = 1)
    {
        m_mix = {};
        WAVEFORMATEX &format = m_mix.Format;
        format.wFormatTag = WORD(tag);
        format.nChannels = WORD(channels);
        format.nSamplesPerSec = DWORD(rate);
        format.wBitsPerSample = WORD(bits);
        format.nBlockAlign = WORD(channels * bits / 8);
        format.nAvgBytesPerSec = DWORD(rate) * format.nBlockAlign;
        format.cbSize = sizeof m_mix - sizeof format;
        m_mix.SubFormat = KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
    }

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
        if (m_event) // the capture does not rest
            passTimeWithEvents(lock);
        else if (!isCaptured)
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
        passStep();
    }

    void passStep()
    {
        if (m_isStarted && m_mode != Mode::Idle && m_mode != Mode::Gone)
            makePacket();
        m_nowMs += kStepMs;
    }

    void passTimeWithEvents(std::unique_lock<std::mutex> &lock)
    {
        while (m_nowMs < m_grantedMs) {
            passStep();
            if (!m_packets.empty())
                SetEvent(m_event);
        }
        m_changed.wait_for(lock, std::chrono::seconds(20), [this] { return m_packets.empty(); });
    }

    void makePacket()
    {
        const int rate = int(m_format.nSamplesPerSec);
        Packet packet;
        packet.frames = UINT32(kStepMs * rate / 1000);
        packet.flags = m_mode == Mode::Silenced   ? AUDCLNT_BUFFERFLAGS_SILENT
                       : m_mode == Mode::Mistimed ? AUDCLNT_BUFFERFLAGS_TIMESTAMP_ERROR
                                                  : 0;
        packet.statedMs = m_nowMs + (m_mode == Mode::Mistimed  ? 500
                                     : m_mode == Mode::Future  ? 3100
                                     : m_mode == Mode::Ancient ? -30'100
                                                               : 0);
        for (UINT32 i = 0; i < packet.frames * m_format.nChannels; ++i) {
            const float sample = sampleAt(m_nowMs + qint64(i / m_format.nChannels) * 1000 / rate);
            const auto integer = qint16(sample * 32768);
            if (m_format.wBitsPerSample == 32)
                packet.bytes.append(reinterpret_cast<const char *>(&sample), sizeof sample);
            else
                packet.bytes.append(reinterpret_cast<const char *>(&integer), sizeof integer);
        }
        m_packets.push_back(packet);
    }

    /// Whether packets can have this format.
    bool takes(const WAVEFORMATEX &format, DWORD flags) const
    {
        const WAVEFORMATEX &own = m_mix.Format;
        const bool isOwn = format.wBitsPerSample == own.wBitsPerSample && format.wFormatTag == own.wFormatTag;
        const bool isInt16 = format.wBitsPerSample == 16 && !refusesInt16;
        return (flags & AUDCLNT_STREAMFLAGS_AUTOCONVERTPCM) != 0 ||
               (format.nSamplesPerSec == own.nSamplesPerSec && format.nChannels == own.nChannels && (isOwn || isInt16));
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
            const Lock lock(device.m_mutex);
            device.m_format = *format;
            return device.takes(*format, flags) ? result : AUDCLNT_E_UNSUPPORTED_FORMAT;
        }
        HRESULT STDMETHODCALLTYPE GetBufferSize(UINT32 *) override { return device.answer("GetBufferSize"); }
        HRESULT STDMETHODCALLTYPE GetMixFormat(WAVEFORMATEX **format) override
        {
            const HRESULT result = device.answer("GetMixFormat");
            if (SUCCEEDED(result)) {
                *format = static_cast<WAVEFORMATEX *>(CoTaskMemAlloc(sizeof device.m_mix));
                std::memcpy(*format, &device.m_mix, sizeof device.m_mix);
            }
            return result;
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
                device.m_event = nullptr;
                device.m_packets.clear();
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
        HRESULT STDMETHODCALLTYPE SetEventHandle(HANDLE event) override
        {
            if (device.acceptsEvents) {
                const Lock lock(device.m_mutex);
                device.m_event = event;
            }
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
            *data = reinterpret_cast<BYTE *>(packet.bytes.data());
            *frames = packet.frames;
            *flags = packet.flags;
            *time = UINT64(packet.statedMs) * 10'000;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE ReleaseBuffer(UINT32 frames) override
        {
            const Lock lock(device.m_mutex);
            if (device.m_packets.empty() || frames != device.m_packets.front().frames)
                return AUDCLNT_E_OUT_OF_ORDER;
            device.m_packets.pop_front();
            device.m_changed.notify_all();
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE GetNextPacketSize(UINT32 *) override { return E_NOTIMPL; }
    };

    struct Packet {
        qint64 statedMs = 0;
        DWORD flags = 0;
        UINT32 frames = 0;
        QByteArray bytes;
    };

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    qint64 m_nowMs = kStartMs;
    qint64 m_grantedMs = m_nowMs;
    bool m_isResting = false;
    bool m_isStarted = false;
    HANDLE m_event = nullptr;
    WAVEFORMATEXTENSIBLE m_mix{};
    WAVEFORMATEX m_format{}; // of the packets
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
