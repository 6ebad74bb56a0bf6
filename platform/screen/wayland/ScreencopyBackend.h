#pragma once

#include "screen/KelScreenManager.h"

namespace kel
{

/// Captures the outputs of a Wayland compositor that lets programs copy the screen, without asking anybody. Nothing
/// tells where the pointer is, so it is part of the frames.
class ScreencopyBackend final : public KelScreenBackend
{
public:
    /// Whether the compositor that $WAYLAND_DISPLAY names is of that kind.
    static bool isAvailable();

    QString name() const override { return QStringLiteral("Wayland, copied by the compositor"); }
    QString errorString() const override;
    bool isPointerInFrames() const override { return true; }
    std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &rect, bool withPointer) override;
};

} // namespace kel
