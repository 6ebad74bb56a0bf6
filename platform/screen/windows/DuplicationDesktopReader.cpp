#include "screen/windows/DuplicationDesktopReader.h"

#include "screen/windows/Monitors.h"
#include "screen/windows/NativeRect.h"

using Microsoft::WRL::ComPtr;

namespace
{

// What is to pass in a moment and has not so many updates later never will.
constexpr int maxVainUpdates = 50;

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

DuplicationDesktopReader::DuplicationDesktopReader(const QRect &rect)
    : m_rect(rect)
{
}

DesktopReader::Update DuplicationDesktopReader::update()
{
    Update news;
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
    HRESULT result = CreateDXGIFactory1(IID_PPV_ARGS(&factory));
    if (FAILED(result))
        return result;
    QRegion missing = monitorRegion() & m_rect;
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
            result = m_outputs.emplace_back().open(adapter.Get(), output.Get(), m_rect);
            if (FAILED(result))
                return result;
        }
    }
    if (!missing.isEmpty()) // screens of a driver that has no part in this, or screens in a hurry
        return m_hasPicture ? DXGI_ERROR_MODE_CHANGE_IN_PROGRESS : DXGI_ERROR_UNSUPPORTED;
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
    if (isElsewhere(result) && m_hasPicture)
        return State::NotNow;
    const bool mayPass = (isElsewhere(result) || passes(result)) && ++m_vainUpdates < maxVainUpdates;
    return mayPass ? State::NotNow : State::Unusable;
}
