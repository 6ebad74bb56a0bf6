#include "play/player/Player.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <algorithm>
#include <array>
#include <limits>

namespace
{

// The same as in the menu of PlaySpeedLabel.
constexpr std::array<double, 8> kSpeeds{0.2, 0.5, 0.8, 1.0, 1.2, 1.5, 1.8, 2.0};

int toInt(qint64 ms)
{
    return int(std::min<qint64>(ms, std::numeric_limits<int>::max()));
}

} // namespace

Player::Player(KelPlaybackTrackManager *manager, QObject *parent)
    : QObject(parent)
    , m_manager(manager)
    , m_durationMs(toInt(manager->lengthMs()))
    , m_rangeEndMs(m_durationMs)
{
    // Due immediately, but after input events that are already queued.
    m_seekTimer.setSingleShot(true);
    connect(&m_seekTimer, &QTimer::timeout, this, &Player::applySeek);
    connect(manager, &KelPlaybackTrackManager::sigFrameChanged, this, &Player::followFrame);
    connect(manager, &KelPlaybackTrackManager::sigPlaybackStarted, this, [this] { emit playingChanged(true); });
    connect(manager, &KelPlaybackTrackManager::sigPlaybackPaused, this, [this] { emit playingChanged(false); });
    connect(manager, &KelPlaybackTrackManager::sigPlaybackStopped, this, [this] {
        emit playingChanged(false);
        rewind();
    });
    connect(manager, &KelPlaybackTrackManager::sigPlaybackSpeedChanged, this, &Player::speedChanged);
    m_manager->seek(0);
}

int Player::frame() const
{
    return m_pendingFrame >= 0 ? m_pendingFrame : m_manager->currentFrame();
}

int Player::msOf(int frame) const
{
    return toInt(m_manager->msOfFrame(frame));
}

int Player::firstFrame() const
{
    return m_manager->frameAtMs(m_rangeStartMs);
}

int Player::lastFrame() const
{
    return m_manager->frameAtMs(m_rangeEndMs);
}

bool Player::isPlaying() const
{
    return m_manager->state() == KelPlaybackTrackManager::Playing;
}

double Player::speed() const
{
    return m_manager->speed();
}

bool Player::isTrimmed() const
{
    return m_rangeStartMs > 0 || m_rangeEndMs < m_durationMs;
}

void Player::setPlaying(bool on)
{
    if (on == isPlaying())
        return;
    if (!on) {
        m_manager->pause();
        return;
    }
    if (frame() >= lastFrame())
        seekToFrame(firstFrame());
    settle();
    m_manager->play();
}

void Player::seekToMs(int ms)
{
    seekToFrame(m_manager->frameAtMs(ms));
}

void Player::seekToFrame(int frame)
{
    m_pendingFrame = std::clamp(frame, firstFrame(), lastFrame());
    m_seekTimer.start(0);
}

void Player::stepFrames(int count)
{
    setPlaying(false);
    seekToFrame(frame() + count);
}

void Player::stepMs(int ms)
{
    seekToFrame(frame() + m_manager->framesIn(ms));
}

void Player::beginScrub()
{
    m_resumesAfterScrub = isPlaying();
    setPlaying(false);
}

void Player::endScrub()
{
    settle();
    if (m_resumesAfterScrub && frame() < lastFrame())
        setPlaying(true);
    m_resumesAfterScrub = false;
}

void Player::setRange(int startMs, int endMs)
{
    startMs = std::clamp(startMs, 0, m_durationMs);
    endMs = std::clamp(endMs, startMs, m_durationMs);
    if (startMs == m_rangeStartMs && endMs == m_rangeEndMs)
        return;
    m_rangeStartMs = startMs;
    m_rangeEndMs = endMs;
    m_manager->setTrimRange(isTrimmed() ? startMs : -1, isTrimmed() ? endMs : -1);
    emit rangeChanged(startMs, endMs);
    if (frame() < firstFrame() || frame() > lastFrame())
        seekToFrame(frame());
}

void Player::trimStartHere()
{
    setRange(positionMs(), std::max(positionMs(), m_rangeEndMs));
}

void Player::trimEndHere()
{
    setRange(std::min(positionMs(), m_rangeStartMs), positionMs());
}

void Player::setSpeed(double speed)
{
    m_manager->setSpeed(speed);
}

void Player::faster()
{
    // With a tolerance, because the speed may have been rounded.
    const auto next = std::upper_bound(kSpeeds.begin(), kSpeeds.end(), speed() + 0.01);
    if (next != kSpeeds.end())
        setSpeed(*next);
}

void Player::slower()
{
    const auto next = std::lower_bound(kSpeeds.begin(), kSpeeds.end(), speed() - 0.01);
    if (next != kSpeeds.begin())
        setSpeed(*(next - 1));
}

void Player::followFrame(int frame)
{
    if (isPlaying() && frame > lastFrame()) {
        m_manager->pause();
        rewind();
        return;
    }
    emit frameChanged();
    emit positionChanged(msOf(frame));
}

void Player::rewind()
{
    seekToFrame(firstFrame());
    settle();
}

void Player::settle()
{
    m_seekTimer.stop();
    applySeek();
}

void Player::applySeek()
{
    if (m_pendingFrame < 0)
        return;
    const int frame = m_pendingFrame;
    m_pendingFrame = -1;
    m_manager->seek(frame, true);
}
