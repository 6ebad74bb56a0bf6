#pragma once

#include "screen/windows/SurfaceRotation.h"

#include <QImage>
#include <QRegion>

#include <d3d11.h>
#include <dxgi1_2.h>
#include <wrl/client.h>

namespace kel
{

/// One screen, duplicated by the Desktop Duplication API.
class DuplicatedOutput
{
public:
    /// Starts to duplicate the part of the screen inside of `rect` (physical pixels of the desktop). `device` must
    /// belong to the adapter of the screen.
    HRESULT open(ID3D11Device *device, IDXGIOutput *output, const QRect &rect);

    /// Updates the screen's part of `image`, the image of that rectangle, and adds the updated area to `changed`.
    /// DXGI_ERROR_WAIT_TIMEOUT when no frame was received yet.
    HRESULT update(QImage &image, QRegion *changed);

private:
    template <typename Interface>
    using ComPtr = Microsoft::WRL::ComPtr<Interface>;

    HRESULT createTarget();
    QRegion changedOnSurface(const DXGI_OUTDUPL_FRAME_INFO &info);
    HRESULT read(IDXGIResource *frame, const QRegion &onSurface, QImage &image, QRegion *changed);

    ComPtr<ID3D11Device> m_device;
    ComPtr<ID3D11DeviceContext> m_context;
    ComPtr<IDXGIOutputDuplication> m_duplication;
    ComPtr<ID3D11Texture2D> m_target; // a CPU-readable copy of the part of the surface
    SurfaceRotation m_rotation;
    QRect m_part;       // of the surface that is read
    QPoint m_placement; // of the screen's top-left corner in the image
    bool m_hasImage = false;
};

} // namespace kel
