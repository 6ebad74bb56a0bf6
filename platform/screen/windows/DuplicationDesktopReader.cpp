#include "screen/windows/DuplicationDesktopReader.h"

#include "logging/PlatformLog.h"
#include "screen/windows/Monitors.h"
#include "screen/windows/NativeRect.h"

#include <QDebug>

namespace kel
{

using Microsoft::WRL::ComPtr;

namespace
{

// A transient error that lasts for more updates than this is permanent.
constexpr int kMaxFailedUpdates = 50;

// While another desktop has the screen: retrying is expensive, and the state can last for hours.
constexpr int kUpdatesBetweenRetries = 10;

/// Another desktop has the screen, such as the log-on screen or a consent prompt. That can last for hours.
bool isAccessLost(HRESULT result)
{
    return result == DXGI_ERROR_ACCESS_LOST || result == E_ACCESSDENIED || result == DXGI_ERROR_SESSION_DISCONNECTED;
}

/// The display mode is changing, or there is no frame yet.
bool isTransient(HRESULT result)
{
    return result == DXGI_ERROR_MODE_CHANGE_IN_PROGRESS || result == DXGI_ERROR_DEVICE_REMOVED ||
           result == DXGI_ERROR_DEVICE_RESET || result == DXGI_ERROR_WAIT_TIMEOUT;
}

} // namespace

DuplicationSystem DuplicationSystem::real()
{
    return {[](IDXGIFactory1 **factory) { return CreateDXGIFactory1(IID_PPV_ARGS(factory)); },
            [](IDXGIAdapter1 *adapter, ID3D11Device **device) {
                return D3D11CreateDevice(adapter, D3D_DRIVER_TYPE_UNKNOWN, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION,
                                         device, nullptr, nullptr);
            },
            monitorRegion};
}

DuplicationDesktopReader::DuplicationDesktopReader(const QRect &rect, const DuplicationSystem &system)
    : m_rect(rect)
    , m_system(system)
{
}

DesktopReader::Update DuplicationDesktopReader::update()
{
    Update update;
    if (m_updatesToSkip > 0) {
        --m_updatesToSkip;
        return update;
    }
    HRESULT result = S_OK;
    if (m_factory && !m_factory->IsCurrent())
        m_factory.Reset(); // a screen was added or removed
    if (!m_factory) {
        result = open();
        if (SUCCEEDED(result))
            update.changed = QRect(QPoint(), m_rect.size());
    }
    if (SUCCEEDED(result))
        result = read(&update.changed);
    update.state = stateAfter(result);
    return update;
}

HRESULT DuplicationDesktopReader::open()
{
    m_outputs.clear();
    ComPtr<IDXGIFactory1> factory;
    HRESULT result = m_system.createFactory(&factory);
    if (FAILED(result))
        return result;
    QRegion missing = m_system.monitors() & m_rect;
    ComPtr<IDXGIAdapter1> adapter;
    for (UINT a = 0; factory->EnumAdapters1(a, &adapter) != DXGI_ERROR_NOT_FOUND; ++a) {
        ComPtr<IDXGIOutput> output;
        for (UINT o = 0; adapter->EnumOutputs(o, &output) != DXGI_ERROR_NOT_FOUND; ++o) {
            DXGI_OUTPUT_DESC screen{};
            output->GetDesc(&screen);
            const QRect place = fromNative(screen.DesktopCoordinates);
            if (!screen.AttachedToDesktop || !m_rect.intersects(place))
                continue;
            missing -= place;
            ComPtr<ID3D11Device> device;
            result = m_system.createDevice(adapter.Get(), &device);
            if (SUCCEEDED(result))
                result = m_outputs.emplace_back().open(device.Get(), output.Get(), m_rect);
            if (FAILED(result))
                return result;
        }
    }
    if (!missing.isEmpty()) // screens whose driver does not support duplication, or that are changing
        return m_hasImage ? DXGI_ERROR_MODE_CHANGE_IN_PROGRESS : DXGI_ERROR_UNSUPPORTED;
    if (m_outputs.empty() && m_hasImage) // the last screen was removed, as when a remote desktop is disconnected
        return DXGI_ERROR_SESSION_DISCONNECTED;
    QImage image(m_rect.size(), QImage::Format_RGB32);
    if (image.isNull())
        return E_OUTOFMEMORY;
    image.fill(Qt::black);
    m_image = image;
    m_factory = factory;
    return S_OK;
}

HRESULT DuplicationDesktopReader::read(QRegion *changed)
{
    for (DuplicatedOutput &output : m_outputs) {
        const HRESULT result = output.update(m_image, changed);
        if (FAILED(result))
            return result;
    }
    return S_OK;
}

DesktopReader::State DuplicationDesktopReader::stateAfter(HRESULT result)
{
    if (SUCCEEDED(result)) {
        m_hasImage = true;
        m_failedUpdates = 0;
        return State::Ready;
    }
    if (result != DXGI_ERROR_WAIT_TIMEOUT)
        m_factory.Reset();
    if (isAccessLost(result) && m_hasImage) {
        m_updatesToSkip = kUpdatesBetweenRetries;
        return State::NotNow;
    }
    if ((isAccessLost(result) || isTransient(result)) && ++m_failedUpdates < kMaxFailedUpdates)
        return State::NotNow;
    qCInfo(logScreen, "[DuplicationDesktopReader] Windows does not provide frames of this desktop (error %08lx)",
           static_cast<unsigned long>(result));
    return State::Unusable;
}

} // namespace kel
