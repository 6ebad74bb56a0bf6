#include "playback/mouse/KelMouseButtonLottie.h"

#include "logging/Log.h"
#include "lottie/KelLottie.h"
#include "playback/mouse/EffectTiming.h"

#include <QColor>
#include <QRectF>

using namespace kel;

// Must be in the global namespace, as Q_INIT_RESOURCE declares a global function.
static void registerResources()
{
    Q_INIT_RESOURCE(kelmovie);
}

KelMouseButtonLottie::KelMouseButtonLottie() = default;

KelMouseButtonLottie::KelMouseButtonLottie(const QString &animation)
    : mLottie(std::make_unique<KelLottie>(animation))
{
}

KelMouseButtonLottie::~KelMouseButtonLottie() = default;

double KelMouseButtonLottie::frameRateRaw() const
{
    if (mLottie)
        return mLottie->frameRate();
    qCCritical(logPlayback, "KelMouseButtonLottie::frameRateRaw: mLottie is nullptr!");
    return 30.0;
}

double KelMouseButtonLottie::frameCountRaw() const
{
    if (mLottie)
        return double(mLottie->totalFrame());
    qCCritical(logPlayback, "KelMouseButtonLottie::frameCountRaw: mLottie is nullptr!");
    return 0.0;
}

int KelMouseButtonLottie::holdFrame() const
{
    return EffectTiming::playbackFrame(holdFrameRaw(), frameRateRaw(), m_playbackRate);
}

int KelMouseButtonLottie::frameCount(int, bool) const
{
    return EffectTiming::playbackFrames(frameCountRaw(), frameRateRaw(), m_playbackRate);
}

void KelMouseButtonLottie::setColor(const QColor &color)
{
    if (mLottie)
        mLottie->setColor(color);
}

void KelMouseButtonLottie::paintFrame(QPainter *painter, int frame, const QRectF &target, double angle)
{
    if (mLottie)
        mLottie->paint(painter, EffectTiming::animationFrame(frame, frameRateRaw(), m_playbackRate), target, angle);
}

namespace
{

/// Its petals or sparks extend beyond the target: painted at 1.3 times its size, with the same center.
class LargeAnimation : public KelMouseButtonLottie
{
public:
    using KelMouseButtonLottie::KelMouseButtonLottie;
    void paint(QPainter *painter, int frame, const QRectF &target, int) override
    {
        QRectF larger(QPointF(), target.size() * 1.3);
        larger.moveCenter(target.center());
        paintFrame(painter, frame, larger, 0);
    }
};

class ButtonNone final : public KelMouseButtonLottie
{
public:
    int holdFrameRaw() const override { return 0; }
    double frameRateRaw() const override { return 30.0; }
    double frameCountRaw() const override { return 0.0; }
    bool effectFlag() const override { return false; }
    void paint(QPainter *, int, const QRectF &, int) override {}
};

class ButtonRay final : public KelMouseButtonLottie
{
public:
    ButtonRay()
        : KelMouseButtonLottie(QStringLiteral(":/KelScreenRecord/click_ray.json"))
    {
    }
    int holdFrameRaw() const override { return 9; }
    void paint(QPainter *painter, int frame, const QRectF &target, int button) override
    {
        paintFrame(painter, frame, target, button == 0 ? -50.0 : button == 1 ? 50.0 : 0.0);
    }
};

class ButtonFloral final : public LargeAnimation
{
public:
    ButtonFloral()
        : LargeAnimation(QStringLiteral(":/KelScreenRecord/click_floral.json"))
    {
    }
    int holdFrameRaw() const override { return 1; }
    bool effectFlag() const override { return false; }
};

class ButtonFireworks final : public LargeAnimation
{
public:
    ButtonFireworks()
        : LargeAnimation(QStringLiteral(":/KelScreenRecord/click_fireworks.json"))
    {
    }
    int holdFrameRaw() const override { return 12; }
};

class ButtonStarts final : public LargeAnimation
{
public:
    ButtonStarts()
        : LargeAnimation(QStringLiteral(":/KelScreenRecord/click_starts.json"))
    {
    }
    int holdFrameRaw() const override { return 9; }
};

class ButtonRipple final : public KelMouseButtonLottie
{
public:
    ButtonRipple()
        : KelMouseButtonLottie(QStringLiteral(":/KelScreenRecord/click_ripple.json"))
    {
    }
    int holdFrameRaw() const override { return 12; }
    void paint(QPainter *painter, int frame, const QRectF &target, int) override
    {
        paintFrame(painter, frame, target, 0);
    }
};

class ButtonConventional final : public KelMouseButtonLottie
{
public:
    int holdFrameRaw() const override { return 4; }
    double frameRateRaw() const override { return 30.0; }
    double frameCountRaw() const override { return 12.0; }
    void paint(QPainter *, int, const QRectF &, int) override {}
};

std::unique_ptr<KelMouseButtonLottie> createMember(int type)
{
    switch (type) {
    case 0:
        return std::make_unique<ButtonNone>();
    case 1:
        return std::make_unique<ButtonRay>();
    case 2:
        return std::make_unique<ButtonFloral>();
    case 3:
        return std::make_unique<ButtonFireworks>();
    case 4:
        return std::make_unique<ButtonStarts>();
    case 5:
        return std::make_unique<ButtonRipple>();
    case 6:
        return std::make_unique<ButtonConventional>();
    default:
        return nullptr;
    }
}

} // namespace

std::unique_ptr<KelMouseButtonLottie> createMouseButtonLottie(int frameRate, int type)
{
    registerResources();
    auto effect = createMember(type);
    if (effect)
        effect->setPlaybackRate(frameRate);
    return effect;
}
