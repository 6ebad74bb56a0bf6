#include "screen/windows/DuplicatedOutput.h"

#include "screen/windows/NativeRect.h"

#include <QTransform>

#include <cstring>
#include <vector>

namespace kel
{

namespace
{

constexpr UINT kFirstFrameTimeoutMs = 40;

// With more rectangles than this, one large transfer is cheaper than many small ones.
constexpr int kMaxRects = 128;

int degreesOf(DXGI_MODE_ROTATION rotation)
{
    switch (rotation) {
    case DXGI_MODE_ROTATION_ROTATE90:
        return 90;
    case DXGI_MODE_ROTATION_ROTATE180:
        return 180;
    case DXGI_MODE_ROTATION_ROTATE270:
        return 270;
    default:
        return 0;
    }
}

void copyPixels(const QImage &from, const QPoint &to, QImage &image)
{
    for (int y = 0; y < from.height(); ++y) {
        std::memcpy(image.scanLine(to.y() + y) + to.x() * int(sizeof(QRgb)), from.constScanLine(y),
                    std::size_t(from.width()) * sizeof(QRgb));
    }
}

} // namespace

HRESULT DuplicatedOutput::open(ID3D11Device *device, IDXGIOutput *output, const QRect &rect)
{
    m_device = device;
    m_device->GetImmediateContext(&m_context);
    ComPtr<IDXGIOutput1> output1;
    HRESULT result = output->QueryInterface(IID_PPV_ARGS(&output1));
    if (SUCCEEDED(result))
        result = output1->DuplicateOutput(m_device.Get(), &m_duplication);
    if (FAILED(result))
        return result;

    DXGI_OUTPUT_DESC screen;
    output->GetDesc(&screen);
    DXGI_OUTDUPL_DESC surface;
    m_duplication->GetDesc(&surface);
    const QRect onDesktop = fromNative(screen.DesktopCoordinates);
    const int degrees = degreesOf(surface.Rotation);
    m_rotation = {degrees, degrees % 180 == 0 ? onDesktop.size() : onDesktop.size().transposed()};
    m_part = m_rotation.toSurface((rect & onDesktop).translated(-onDesktop.topLeft()));
    m_placement = onDesktop.topLeft() - rect.topLeft();
    return createTarget();
}

HRESULT DuplicatedOutput::createTarget()
{
    D3D11_TEXTURE2D_DESC target{};
    target.Width = UINT(m_part.width());
    target.Height = UINT(m_part.height());
    target.MipLevels = 1;
    target.ArraySize = 1;
    target.Format = DXGI_FORMAT_B8G8R8A8_UNORM; // the format of duplicated surfaces, independent of the display mode
    target.SampleDesc.Count = 1;
    target.Usage = D3D11_USAGE_STAGING;
    target.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    return m_device->CreateTexture2D(&target, nullptr, &m_target);
}

HRESULT DuplicatedOutput::update(QImage &image, QRegion *changed)
{
    DXGI_OUTDUPL_FRAME_INFO info{};
    ComPtr<IDXGIResource> frame;
    HRESULT result = m_duplication->AcquireNextFrame(m_hasImage ? 0 : kFirstFrameTimeoutMs, &info, &frame);
    if (result == DXGI_ERROR_WAIT_TIMEOUT)
        return m_hasImage ? S_OK : result;
    if (FAILED(result))
        return result;
    // A frame without a present time reports only the pointer; its surface is not the desktop.
    if (info.LastPresentTime.QuadPart != 0)
        result = read(frame.Get(), m_hasImage ? changedOnSurface(info) : QRegion(m_part), image, changed);
    else if (!m_hasImage)
        result = DXGI_ERROR_WAIT_TIMEOUT;
    m_duplication->ReleaseFrame();
    return result;
}

/// The whole part when Windows does not report the changes.
QRegion DuplicatedOutput::changedOnSurface(const DXGI_OUTDUPL_FRAME_INFO &info)
{
    QRegion region;
    UINT bytes = 0;
    std::vector<DXGI_OUTDUPL_MOVE_RECT> moves(info.TotalMetadataBufferSize / sizeof(DXGI_OUTDUPL_MOVE_RECT) + 1);
    std::vector<RECT> drawn(info.TotalMetadataBufferSize / sizeof(RECT) + 1);
    if (info.TotalMetadataBufferSize == 0 ||
        FAILED(m_duplication->GetFrameMoveRects(UINT(moves.size() * sizeof moves[0]), moves.data(), &bytes)))
        return m_part;
    moves.resize(bytes / sizeof moves[0]);
    for (const DXGI_OUTDUPL_MOVE_RECT &move : moves)
        region += fromNative(move.DestinationRect);
    if (FAILED(m_duplication->GetFrameDirtyRects(UINT(drawn.size() * sizeof drawn[0]), drawn.data(), &bytes)))
        return m_part;
    drawn.resize(bytes / sizeof drawn[0]);
    for (const RECT &rect : drawn)
        region += fromNative(rect);
    region &= m_part;
    return region.rectCount() > kMaxRects ? QRegion(region.boundingRect()) : region;
}

HRESULT DuplicatedOutput::read(IDXGIResource *frame, const QRegion &onSurface, QImage &image, QRegion *changed)
{
    ComPtr<ID3D11Texture2D> texture;
    HRESULT result = frame->QueryInterface(IID_PPV_ARGS(&texture));
    if (FAILED(result))
        return result;
    for (const QRect &rect : onSurface) {
        const D3D11_BOX box{
            UINT(rect.x()), UINT(rect.y()), 0, UINT(rect.x() + rect.width()), UINT(rect.y() + rect.height()), 1};
        const QPoint to = rect.topLeft() - m_part.topLeft();
        m_context->CopySubresourceRegion(m_target.Get(), 0, UINT(to.x()), UINT(to.y()), 0, texture.Get(), 0, &box);
    }
    if (onSurface.isEmpty())
        return S_OK;
    D3D11_MAPPED_SUBRESOURCE mapped;
    result = m_context->Map(m_target.Get(), 0, D3D11_MAP_READ, 0, &mapped);
    if (FAILED(result))
        return result;
    for (const QRect &rect : onSurface) {
        const QPoint from = rect.topLeft() - m_part.topLeft();
        const QImage pixels(static_cast<const uchar *>(mapped.pData) + std::size_t(from.y()) * mapped.RowPitch +
                                std::size_t(from.x()) * sizeof(QRgb),
                            rect.width(), rect.height(), int(mapped.RowPitch), QImage::Format_RGB32);
        const QRect target = m_rotation.toScreen(rect).translated(m_placement);
        copyPixels(m_rotation.degrees() == 0 ? pixels : pixels.transformed(QTransform().rotate(m_rotation.degrees())),
                   target.topLeft(), image);
        *changed += target;
    }
    m_context->Unmap(m_target.Get(), 0);
    m_hasImage = true;
    return S_OK;
}

} // namespace kel
