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

// What is to pass in a moment and has not so many updates later never will.
constexpr int maxVainUpdates = 50;

// Of a desktop that is somebody else's: asking makes work, and may go on for hours.
constexpr int updatesBetweenQuestions = 10;

/// The desktop is somebody else's: of whoever logs on or confirms a question of rights. That can take hours.
bool isElsewhere(HRESULT result)
{
    return result == DXGI_ERROR_ACCESS_LOST || result == E_ACCESSDENIED || result == DXGI_ERROR_SESSION_DISCONNECTED;
}

/// Screens are being switched, or have nothing to show yet.
bool passes(HRESULT result)
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
    Update news;
    if (m_restingUpdates > 0) {
        --m_restingUpdates;
        return news;
    }
    HRESULT result = S_OK;
    if (m_factory && !m_factory->IsCurrent())
        m_factory.Reset(); // a screen has come or gone
    if (!m_factory) {
        result = open();
        if (SUCCEEDED(result))
            news.changed = QRect(QPoint(), m_rect.size());
    }
    if (SUCCEEDED(result))
        result = read(&news.changed);
    news.state = stateAfter(result);
    return news;
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
    if (!missing.isEmpty()) // screens of a driver that has no part in this, or screens in a hurry
        return m_hasPicture ? DXGI_ERROR_MODE_CHANGE_IN_PROGRESS : DXGI_ERROR_UNSUPPORTED;
    if (m_outputs.empty() && m_hasPicture) // the last screen went, as it does when somebody leaves a remote desktop
        return DXGI_ERROR_SESSION_DISCONNECTED;
    QImage picture(m_rect.size(), QImage::Format_RGB32);
    if (picture.isNull())
        return E_OUTOFMEMORY;
    picture.fill(Qt::black);
    m_picture = picture;
    m_factory = factory;
    return S_OK;
}

HRESULT DuplicationDesktopReader::read(QRegion *changed)
{
    for (DuplicatedOutput &output : m_outputs) {
        const HRESULT result = output.update(m_picture, changed);
        if (FAILED(result))
            return result;
    }
    return S_OK;
}

DesktopReader::State DuplicationDesktopReader::stateAfter(HRESULT result)
{
    if (SUCCEEDED(result)) {
        m_hasPicture = true;
        m_vainUpdates = 0;
        return State::Ready;
    }
    if (result != DXGI_ERROR_WAIT_TIMEOUT)
        m_factory.Reset();
    if (isElsewhere(result) && m_hasPicture) {
        m_restingUpdates = updatesBetweenQuestions;
        return State::NotNow;
    }
    if ((isElsewhere(result) || passes(result)) && ++m_vainUpdates < maxVainUpdates)
        return State::NotNow;
    qCInfo(logScreen, "[DuplicationDesktopReader] Windows does not hand out pictures of this desktop (error %08lx)",
           static_cast<unsigned long>(result));
    return State::Unusable;
}

} // namespace kel
