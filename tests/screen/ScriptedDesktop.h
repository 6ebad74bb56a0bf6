#pragma once

#include "screen/windows/DuplicationDesktopReader.h"
#include "screen/windows/NativeRect.h"

#include <QImage>

#include <algorithm>
#include <deque>
#include <vector>

// The interfaces of COM have no destructors.
#ifdef __GNUC__
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// The result of acquiring the next frame of a screen.
struct ScriptedFrame {
    HRESULT result = S_OK;
    bool isPresented = true; ///< false: only the pointer moved
    QImage surface;          ///< its new content; null: unchanged
    std::vector<RECT> drawn;
    std::vector<DXGI_OUTDUPL_MOVE_RECT> moved;
    bool isDescribed = true; ///< true: Windows reports what was drawn
};

struct ScriptedScreen {
    QRect place;
    DXGI_MODE_ROTATION rotation = DXGI_MODE_ROTATION_IDENTITY;
    std::deque<ScriptedFrame> frames; ///< DXGI_ERROR_WAIT_TIMEOUT when empty
    HRESULT access = S_OK;            ///< the result of access requests
    int accessRequests = 0;           ///< number of access requests
};

/// The graphics system that the reader uses, controlled by a script. Textures are real.
class ScriptedDesktop
{
    template <typename Interface>
    using ComPtr = Microsoft::WRL::ComPtr<Interface>;

public:
    std::deque<ScriptedScreen> screens;
    bool isCurrent = true; ///< false: screens were added or removed

    kel::DuplicationSystem system()
    {
        return {[this](IDXGIFactory1 **factory) {
                    isCurrent = true;
                    *factory = new Factory(*this);
                    return S_OK;
                },
                [](IDXGIAdapter1 *, ID3D11Device **device) { return sharedDevice().CopyTo(device); },
                [this] {
                    QRegion places;
                    for (const ScriptedScreen &screen : screens)
                        places += screen.place;
                    return places;
                }};
    }

private:
    /// Shared, because its creation takes long.
    static const ComPtr<ID3D11Device> &sharedDevice()
    {
        static const ComPtr<ID3D11Device> device = [] {
            ComPtr<ID3D11Device> created;
            if (FAILED(D3D11CreateDevice(nullptr, D3D_DRIVER_TYPE_WARP, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION,
                                         &created, nullptr, nullptr)))
                qFatal("no device for textures");
            return created;
        }();
        return device;
    }

    template <typename Interface>
    class Object : public Interface
    {
    public:
        virtual ~Object() = default;
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void **object) override
        {
            *object = id == __uuidof(Interface) || id == __uuidof(IUnknown) ? this : nullptr;
            if (!*object)
                return E_NOINTERFACE;
            AddRef();
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
        HRESULT STDMETHODCALLTYPE SetPrivateData(REFGUID, UINT, const void *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE SetPrivateDataInterface(REFGUID, const IUnknown *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetPrivateData(REFGUID, UINT *, void *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetParent(REFIID, void **) override { return E_NOTIMPL; }

    private:
        ULONG m_references = 1;
    };

    class Duplication final : public Object<IDXGIOutputDuplication>
    {
    public:
        Duplication(ScriptedScreen &screen, ID3D11Device *device)
            : m_screen(screen)
            , m_device(device)
        {
        }
        void STDMETHODCALLTYPE GetDesc(DXGI_OUTDUPL_DESC *description) override
        {
            *description = {};
            description->Rotation = m_screen.rotation;
        }
        HRESULT STDMETHODCALLTYPE AcquireNextFrame(UINT, DXGI_OUTDUPL_FRAME_INFO *info, IDXGIResource **frame) override
        {
            if (m_isHeld)
                return DXGI_ERROR_INVALID_CALL;
            if (m_screen.frames.empty())
                return DXGI_ERROR_WAIT_TIMEOUT;
            m_frame = m_screen.frames.front();
            m_screen.frames.pop_front();
            if (FAILED(m_frame.result))
                return m_frame.result;
            m_isHeld = true;
            *info = {};
            info->LastPresentTime.QuadPart = m_frame.isPresented;
            if (m_frame.isDescribed)
                info->TotalMetadataBufferSize =
                    UINT(m_frame.drawn.size() * sizeof(RECT) + m_frame.moved.size() * sizeof m_frame.moved[0]);
            if (!m_frame.surface.isNull())
                m_surface = m_frame.surface;
            D3D11_TEXTURE2D_DESC texture{};
            texture.Width = UINT(m_surface.width());
            texture.Height = UINT(m_surface.height());
            texture.MipLevels = texture.ArraySize = texture.SampleDesc.Count = 1;
            texture.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
            const D3D11_SUBRESOURCE_DATA pixels{m_surface.constBits(), UINT(m_surface.bytesPerLine()), 0};
            ComPtr<ID3D11Texture2D> created;
            const HRESULT result = m_device->CreateTexture2D(&texture, &pixels, &created);
            return FAILED(result) ? result : created.CopyTo(frame);
        }
        HRESULT STDMETHODCALLTYPE GetFrameDirtyRects(UINT size, RECT *rects, UINT *needed) override
        {
            return hand(m_frame.drawn, size, rects, needed);
        }
        HRESULT STDMETHODCALLTYPE GetFrameMoveRects(UINT size, DXGI_OUTDUPL_MOVE_RECT *rects, UINT *needed) override
        {
            return hand(m_frame.moved, size, rects, needed);
        }
        HRESULT STDMETHODCALLTYPE ReleaseFrame() override
        {
            return std::exchange(m_isHeld, false) ? S_OK : DXGI_ERROR_INVALID_CALL;
        }
        HRESULT STDMETHODCALLTYPE GetFramePointerShape(UINT, void *, UINT *, DXGI_OUTDUPL_POINTER_SHAPE_INFO *) override
        {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE MapDesktopSurface(DXGI_MAPPED_RECT *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE UnMapDesktopSurface() override { return E_NOTIMPL; }

    private:
        template <typename Rect>
        static HRESULT hand(const std::vector<Rect> &known, UINT size, Rect *rects, UINT *needed)
        {
            *needed = UINT(known.size() * sizeof(Rect));
            if (size < *needed)
                return DXGI_ERROR_MORE_DATA;
            std::copy(known.begin(), known.end(), rects);
            return S_OK;
        }

        ScriptedScreen &m_screen;
        ComPtr<ID3D11Device> m_device;
        ScriptedFrame m_frame;
        QImage m_surface;
        bool m_isHeld = false;
    };

    class Output final : public Object<IDXGIOutput1>
    {
    public:
        explicit Output(ScriptedScreen &screen)
            : m_screen(screen)
        {
        }
        HRESULT STDMETHODCALLTYPE GetDesc(DXGI_OUTPUT_DESC *description) override
        {
            *description = {};
            const QRect &place = m_screen.place;
            description->DesktopCoordinates = {place.left(), place.top(), place.left() + place.width(),
                                               place.top() + place.height()};
            description->AttachedToDesktop = TRUE;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE DuplicateOutput(IUnknown *device, IDXGIOutputDuplication **duplication) override
        {
            ++m_screen.accessRequests;
            if (SUCCEEDED(m_screen.access))
                *duplication = new Duplication(m_screen, static_cast<ID3D11Device *>(device));
            return m_screen.access;
        }
        HRESULT STDMETHODCALLTYPE GetDisplayModeList(DXGI_FORMAT, UINT, UINT *, DXGI_MODE_DESC *) override
        {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE FindClosestMatchingMode(const DXGI_MODE_DESC *, DXGI_MODE_DESC *, IUnknown *) override
        {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE WaitForVBlank() override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE TakeOwnership(IUnknown *, BOOL) override { return E_NOTIMPL; }
        void STDMETHODCALLTYPE ReleaseOwnership() override {}
        HRESULT STDMETHODCALLTYPE GetGammaControlCapabilities(DXGI_GAMMA_CONTROL_CAPABILITIES *) override
        {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE SetGammaControl(const DXGI_GAMMA_CONTROL *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetGammaControl(DXGI_GAMMA_CONTROL *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE SetDisplaySurface(IDXGISurface *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetDisplaySurfaceData(IDXGISurface *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetFrameStatistics(DXGI_FRAME_STATISTICS *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetDisplayModeList1(DXGI_FORMAT, UINT, UINT *, DXGI_MODE_DESC1 *) override
        {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE FindClosestMatchingMode1(const DXGI_MODE_DESC1 *, DXGI_MODE_DESC1 *,
                                                           IUnknown *) override
        {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE GetDisplaySurfaceData1(IDXGIResource *) override { return E_NOTIMPL; }

    private:
        ScriptedScreen &m_screen;
    };

    class Adapter final : public Object<IDXGIAdapter1>
    {
    public:
        explicit Adapter(ScriptedDesktop &desktop)
            : m_desktop(desktop)
        {
        }
        HRESULT STDMETHODCALLTYPE EnumOutputs(UINT number, IDXGIOutput **output) override
        {
            if (number >= m_desktop.screens.size())
                return DXGI_ERROR_NOT_FOUND;
            *output = new Output(m_desktop.screens[number]);
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE GetDesc(DXGI_ADAPTER_DESC *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE CheckInterfaceSupport(REFGUID, LARGE_INTEGER *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetDesc1(DXGI_ADAPTER_DESC1 *) override { return E_NOTIMPL; }

    private:
        ScriptedDesktop &m_desktop;
    };

    class Factory final : public Object<IDXGIFactory1>
    {
    public:
        explicit Factory(ScriptedDesktop &desktop)
            : m_desktop(desktop)
        {
        }
        HRESULT STDMETHODCALLTYPE EnumAdapters1(UINT number, IDXGIAdapter1 **adapter) override
        {
            if (number > 0)
                return DXGI_ERROR_NOT_FOUND;
            *adapter = new Adapter(m_desktop);
            return S_OK;
        }
        BOOL STDMETHODCALLTYPE IsCurrent() override { return m_desktop.isCurrent; }
        HRESULT STDMETHODCALLTYPE EnumAdapters(UINT, IDXGIAdapter **) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE MakeWindowAssociation(HWND, UINT) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE GetWindowAssociation(HWND *) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE CreateSwapChain(IUnknown *, DXGI_SWAP_CHAIN_DESC *, IDXGISwapChain **) override
        {
            return E_NOTIMPL;
        }
        HRESULT STDMETHODCALLTYPE CreateSoftwareAdapter(HMODULE, IDXGIAdapter **) override { return E_NOTIMPL; }

    private:
        ScriptedDesktop &m_desktop;
    };
};

#ifdef __GNUC__
#pragma GCC diagnostic pop
#endif
