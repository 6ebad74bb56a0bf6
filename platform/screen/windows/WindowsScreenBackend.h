#pragma once

#include "screen/KelScreenManager.h"

namespace kel
{

/// Captures the visible desktop and its pointer.
class WindowsScreenBackend final : public KelScreenBackend
{
public:
    QString name() const override { return QStringLiteral("Windows"); }
    QString errorString() const override;
    std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &rect, bool withPointer) override;
    std::unique_ptr<KelCursorSource> createCursorSource(const QRect &rect) override;
};

} // namespace kel
