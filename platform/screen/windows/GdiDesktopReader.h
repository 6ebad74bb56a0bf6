#pragma once

#include "screen/windows/DesktopReader.h"

#include <QRect>

#include <memory>

namespace kel
{

/// Reads the desktop with GDI, which works on every system, and finds changes by comparing images.
class GdiDesktopReader final : public DesktopReader
{
public:
    /// `rect` is in physical pixels of the desktop.
    explicit GdiDesktopReader(const QRect &rect);
    ~GdiDesktopReader() override;

    Update update() override;
    const QImage &image() const override;

private:
    class Bitmap;

    const QRect m_rect;
    QRegion m_visible; // the part of it on screens
    std::unique_ptr<Bitmap> m_current;
    std::unique_ptr<Bitmap> m_previous;
    bool m_hasImage = false;
};

} // namespace kel
