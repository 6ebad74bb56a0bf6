#pragma once

#include "screen/KelScreenManager.h"

#include <memory>
#include <vector>

namespace kel
{

class ScreenCast;

/// Captures monitors and the pointer through the screen cast of the desktop portal and PipeWire: on any Wayland
/// desktop, after a person has agreed once.
class PortalScreenBackend final : public KelScreenBackend
{
public:
    QString name() const override { return QStringLiteral("desktop portal"); }
    QString errorString() const override;
    std::unique_ptr<KelScreenPreparation> prepare(const QRect &rect, bool withPointer,
                                                  const KelScreenPreparation::Done &done) override;
    bool isPointerInFrames() const override;
    std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &rect, bool withPointer) override;
    std::unique_ptr<KelCursorSource> createCursorSource(const QRect &rect) override;

private:
    std::shared_ptr<ScreenCast> castOf(const QRect &rect, bool withPointer) const;

    std::vector<std::weak_ptr<ScreenCast>> m_casts; // those that somebody uses, the newest at the end
};

} // namespace kel
