#pragma once

#include "screen/windows/SurfaceRotation.h"

#include <QImage>
#include <QRegion>

#include <d3d11.h>
#include <dxgi1_2.h>
#include <wrl/client.h>

namespace kel
{

/// One screen, whose pictures and changes the Desktop Duplication API hands out.
class DuplicatedOutput
{
public:
    /// Begins to duplicate the part of the screen that lies in `rect` (physical pixels of the desktop). The device is
    /// of the screen's adapter.
    HRESULT open(ID3D11Device *device, IDXGIOutput *output, const QRect &rect);

    /// Brings the screen's part of `picture`, a picture of that rectangle, up to date and adds to `changed` where that
    /// was necessary. DXGI_ERROR_WAIT_TIMEOUT when there has not been a picture yet.
    HRESULT update(QImage &picture, QRegion *changed);

private:
    template <typename Interface>
    using ComPtr = Microsoft::WRL::ComPtr<Interface>;

    HRESULT createTarget();
    QRegion changedOnSurface(const DXGI_OUTDUPL_FRAME_INFO &info);
    HRESULT read(IDXGIResource *frame, const QRegion &onSurface, QImage &picture, QRegion *changed);

    ComPtr<ID3D11Device> m_device;
    ComPtr<ID3D11DeviceContext> m_context;
    ComPtr<IDXGIOutputDuplication> m_duplication;
    ComPtr<ID3D11Texture2D> m_target; // the wanted part of the surface, in memory that can be read
    SurfaceRotation m_rotation;
    QRect m_part;       // what is wanted of the surface
    QPoint m_placement; // of the screen's top-left corner in the picture
    bool m_hasPicture = false;
};

} // namespace kel
