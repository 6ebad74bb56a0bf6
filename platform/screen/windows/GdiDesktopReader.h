#pragma once

#include "screen/windows/DesktopReader.h"

#include <QRect>

#include <memory>

namespace kel
{

/// Reads the desktop with GDI, which works everywhere, and finds out by comparison what has changed.
class GdiDesktopReader final : public DesktopReader
{
public:
    /// `rect` is in physical pixels of the desktop.
    explicit GdiDesktopReader(const QRect &rect);
    ~GdiDesktopReader() override;

    Update update() override;
    const QImage &picture() const override;

private:
    class Bitmap;

    const QRect m_rect;
    QRegion m_visible; // the part of it that lies on screens
    std::unique_ptr<Bitmap> m_now;
    std::unique_ptr<Bitmap> m_before;
    bool m_hasPicture = false;
};

} // namespace kel
