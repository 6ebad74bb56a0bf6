#pragma once

#include "screen/windows/DesktopReader.h"
#include "screen/windows/DuplicatedOutput.h"

#include <QRect>

#include <functional>
#include <list>

namespace kel
{

/// What hands out screens and what reads them.
struct DuplicationSystem {
    std::function<HRESULT(IDXGIFactory1 **)> createFactory;
    std::function<HRESULT(IDXGIAdapter1 *, ID3D11Device **)> createDevice;
    std::function<QRegion()> monitors; ///< where the desktop is shown, in physical pixels

    static DuplicationSystem real();
};

/// Reads the desktop with the Desktop Duplication API: Windows tells what was drawn, and only that is copied.
///
/// Windows takes the access away whenever screens are switched, somebody logs on or a program takes over a screen; it
/// is asked for anew now and then until it is granted, and the last picture stays meanwhile.
class DuplicationDesktopReader final : public DesktopReader
{
public:
    /// `rect` is in physical pixels of the desktop.
    explicit DuplicationDesktopReader(const QRect &rect, const DuplicationSystem &system = DuplicationSystem::real());

    Update update() override;
    const QImage &picture() const override { return m_picture; }

private:
    HRESULT open();
    HRESULT read(QRegion *changed);
    State stateAfter(HRESULT result);

    const QRect m_rect;
    const DuplicationSystem m_system;
    QImage m_picture;
    Microsoft::WRL::ComPtr<IDXGIFactory1> m_factory; // null while the screens are not open
    std::list<DuplicatedOutput> m_outputs;
    int m_vainUpdates = 0;    // since the last picture
    int m_restingUpdates = 0; // until the desktop is asked for again
    bool m_hasPicture = false;
};

} // namespace kel
