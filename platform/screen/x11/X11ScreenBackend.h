#pragma once

#include "screen/KelScreenManager.h"

namespace kel
{

/// Captures the root window and the pointer of the X screen that $DISPLAY names.
class X11ScreenBackend final : public KelScreenBackend
{
public:
    QString name() const override { return QStringLiteral("X11"); }
    QString errorString() const override;
    std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &rect, bool withPointer) override;
    std::unique_ptr<KelCursorSource> createCursorSource(const QRect &rect) override;
};

} // namespace kel
