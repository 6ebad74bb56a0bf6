#pragma once

#include "screen/KelCursorSource.h"
#include "screen/portal/ScreenCast.h"

#include <memory>
#include <mutex>
#include <vector>

namespace kel
{

/// The pointer of a screen cast, which tells its position and shape with the pictures.
class PortalCursorSource final : public KelCursorSource
{
public:
    explicit PortalCursorSource(std::shared_ptr<ScreenCast> cast);

    KelCursorPixmap read() override;

private:
    struct KnownShape {
        int number = 0;
        KelCursorShape shape;
    };

    const std::shared_ptr<ScreenCast> m_cast;
    std::mutex m_mutex;
    std::vector<KnownShape> m_shapes; // the last one of each monitor; guarded by the mutex
};

} // namespace kel
