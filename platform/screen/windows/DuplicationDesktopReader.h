#pragma once

#include "screen/windows/DesktopReader.h"
#include "screen/windows/DuplicatedOutput.h"

#include <QRect>

#include <functional>
#include <list>

namespace kel
{

/// The system functions that the reader uses; tests replace them.
struct DuplicationSystem {
    std::function<HRESULT(IDXGIFactory1 **)> createFactory;
    std::function<HRESULT(IDXGIAdapter1 *, ID3D11Device **)> createDevice;
    std::function<QRegion()> monitors; ///< the area of all monitors, in physical pixels

    static DuplicationSystem real();
};

/// Reads the desktop with the Desktop Duplication API: Windows reports the changed areas, and only those are copied.
///
/// Windows revokes the access when display modes change, a log-on screen appears or a program enters exclusive full
/// screen; the reader retries now and then until access is granted again, and keeps the last image meanwhile.
class DuplicationDesktopReader final : public DesktopReader
{
public:
    /// `rect` is in physical pixels of the desktop.
    explicit DuplicationDesktopReader(const QRect &rect, const DuplicationSystem &system = DuplicationSystem::real());

    Update update() override;
    const QImage &image() const override { return m_image; }

private:
    HRESULT open();
    HRESULT read(QRegion *changed);
    State stateAfter(HRESULT result);

    const QRect m_rect;
    const DuplicationSystem m_system;
    QImage m_image;
    Microsoft::WRL::ComPtr<IDXGIFactory1> m_factory; // null while the screens are not open
    std::list<DuplicatedOutput> m_outputs;
    int m_failedUpdates = 0; // since the last image
    int m_updatesToSkip = 0; // before the next retry
    bool m_hasImage = false;
};

} // namespace kel
