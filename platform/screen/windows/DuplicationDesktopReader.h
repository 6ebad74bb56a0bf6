#pragma once

#include "screen/windows/DesktopReader.h"
#include "screen/windows/DuplicatedOutput.h"

#include <QRect>

#include <list>

/// Reads the desktop with the Desktop Duplication API: Windows tells what was drawn, and only that is copied.
///
/// Windows takes the access away whenever screens are switched, somebody logs on or a program takes over a screen; it
/// is asked for anew until it is granted, and the last picture stays meanwhile.
class DuplicationDesktopReader final : public DesktopReader
{
public:
    /// `rect` is in physical pixels of the desktop.
    explicit DuplicationDesktopReader(const QRect &rect);

    Update update() override;
    const QImage &picture() const override { return m_picture; }

private:
    HRESULT open();
    HRESULT read(QRegion *changed);
    State stateAfter(HRESULT result);

    const QRect m_rect;
    QImage m_picture;
    Microsoft::WRL::ComPtr<IDXGIFactory1> m_factory; // null while the screens are not open
    std::list<DuplicatedOutput> m_outputs;
    int m_vainUpdates = 0; // since the last picture
    bool m_hasPicture = false;
};
