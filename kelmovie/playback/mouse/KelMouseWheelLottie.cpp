#include "playback/mouse/KelMouseWheelLottie.h"

#include "lottie/KelLottie.h"
#include "playback/mouse/EffectTiming.h"

#include <QString>

using namespace kel;

// Must be in the global namespace, as Q_INIT_RESOURCE declares a global function.
static void registerResources()
{
    Q_INIT_RESOURCE(kelmovie);
}

KelMouseWheelLottie::KelMouseWheelLottie() = default;

KelMouseWheelLottie::~KelMouseWheelLottie() = default;

int KelMouseWheelLottie::frameCount() const
{
    return EffectTiming::playbackFrames(frameCountRaw(), frameRateRaw(), m_playbackRate);
}

void KelMouseWheelLottie::setColor(const QColor &) {}

namespace
{

class WheelNone final : public KelMouseWheelLottie
{
public:
    double frameRateRaw() const override { return 30.0; }
    double frameCountRaw() const override { return 0.0; }
    void paint(QPainter *, int, const QRectF &, int) override {}
};

class WheelArrow final : public KelMouseWheelLottie
{
public:
    double frameRateRaw() const override { return m_lottie.frameRate(); }
    double frameCountRaw() const override { return double(m_lottie.totalFrame()); }
    void paint(QPainter *painter, int frame, const QRectF &target, int direction) override
    {
        m_lottie.paint(painter, EffectTiming::animationFrame(frame, frameRateRaw(), playbackRate()), target,
                       direction != 0 ? 0 : 180);
    }
    void setColor(const QColor &color) override { m_lottie.setColor(color); }

private:
    KelLottie m_lottie{QStringLiteral(":/KelScreenRecord/wheel_arrow.json")};
};

} // namespace

std::unique_ptr<KelMouseWheelLottie> createMouseWheelLottie(int frameRate, int type)
{
    registerResources();
    std::unique_ptr<KelMouseWheelLottie> effect;
    if (type == 0)
        effect = std::make_unique<WheelNone>();
    else if (type == 1)
        effect = std::make_unique<WheelArrow>();
    if (effect)
        effect->setPlaybackRate(frameRate);
    return effect;
}
