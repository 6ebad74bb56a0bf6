#include "screen/windows/DuplicationDesktopReader.h"

using Microsoft::WRL::ComPtr;

namespace
{

// A screen that has nothing to show when it is asked for the first time so often never will.
constexpr int maxVainUpdates = 10;

/// The access comes back once the desktop is the user's again or the screens are switched.
bool passes(HRESULT result)
{
    return result == DXGI_ERROR_ACCESS_LOST || result == E_ACCESSDENIED || result == DXGI_ERROR_SESSION_DISCONNECTED ||
           result == DXGI_ERROR_MODE_CHANGE_IN_PROGRESS || result == DXGI_ERROR_DEVICE_REMOVED ||
           result == DXGI_ERROR_DEVICE_RESET;
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
    ComPtr<IDXGIAdapter1> adapter;
    for (UINT a = 0; factory->EnumAdapters1(a, &adapter) != DXGI_ERROR_NOT_FOUND; ++a) {
        ComPtr<IDXGIOutput> output;
        for (UINT o = 0; adapter->EnumOutputs(o, &output) != DXGI_ERROR_NOT_FOUND; ++o) {
            DXGI_OUTPUT_DESC screen{};
            output->GetDesc(&screen);
            const RECT &place = screen.DesktopCoordinates;
            if (!screen.AttachedToDesktop ||
                !m_rect.intersects(QRect(QPoint(place.left, place.top), QPoint(place.right - 1, place.bottom - 1))))
                continue;
            result = m_outputs.emplace_back().open(adapter.Get(), output.Get(), m_rect);
            if (FAILED(result))
                return result;
        }
    }
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
        return State::Ready;
    }
    const bool waits = result == DXGI_ERROR_WAIT_TIMEOUT;
    if (!waits)
        m_factory.Reset();
    // An access that was granted once is granted again some time; one that never was may never be.
    const bool mayPass = (waits || passes(result)) && (m_hasPicture || ++m_vainUpdates < maxVainUpdates);
    return mayPass ? State::NotNow : State::Unusable;
}
