#include "audio/output/KelAmplifiedAudioPlayer.h"

#include "audio/output/QtAudioSink.h"
#include "audio/processing/FloatSamples.h"
#include "logging/Log.h"

#include <QDebug>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

using namespace kel;

namespace
{

constexpr int kFeedMs = 20;
constexpr int kPieceBytes = 8192;         // short, so that a new gain is heard soon
constexpr double kInaudibleChange = 0.05; // of the pitch

QAudioFormat audioFormat(const WavFrameReader::Format &wav)
{
    QAudioFormat format;
    format.setCodec(QStringLiteral("audio/pcm"));
    format.setByteOrder(QAudioFormat::LittleEndian);
    format.setChannelCount(wav.channelCount);
    format.setSampleRate(wav.sampleRate);
    format.setSampleSize(wav.bitsPerSample);
    format.setSampleType(wav.isFloat              ? QAudioFormat::Float
                         : wav.bitsPerSample == 8 ? QAudioFormat::UnSignedInt
                                                  : QAudioFormat::SignedInt);
    return format;
}

} // namespace

KelAmplifiedAudioPlayer::KelAmplifiedAudioPlayer(QObject *parent)
    : KelAmplifiedAudioPlayer([](const QAudioFormat &format) { return std::make_unique<QtAudioSink>(format); }, parent)
{
}

KelAmplifiedAudioPlayer::KelAmplifiedAudioPlayer(AudioSink::Factory createSink, QObject *parent)
    : QObject(parent)
    , m_createSink(std::move(createSink))
{
    m_feedTimer.setInterval(kFeedMs);
    m_feedTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_feedTimer, &QTimer::timeout, this, &KelAmplifiedAudioPlayer::tick);
}

KelAmplifiedAudioPlayer::~KelAmplifiedAudioPlayer()
{
    if (m_sink)
        m_sink->disconnect(this);
}

bool KelAmplifiedAudioPlayer::setSource(const QString &path)
{
    if (path.isEmpty())
        return fail(QStringLiteral("File path is empty"));
    if (!QFileInfo::exists(path))
        return fail(QStringLiteral("File does not exist: ") + path);
    unload();
    return loadWavFile(path);
}

bool KelAmplifiedAudioPlayer::setSource(std::unique_ptr<QIODevice> file)
{
    unload();
    return takeFile(m_file.open(std::move(file)));
}

void KelAmplifiedAudioPlayer::unload()
{
    stop();
    moveTo(0);
    closeDevice();
    m_gain.jumpToTarget();
    m_gain.resetLevel();
    m_isUnreadable = false;
}

bool KelAmplifiedAudioPlayer::loadWavFile(const QString &path)
{
    return takeFile(m_file.open(path));
}

bool KelAmplifiedAudioPlayer::takeFile(bool isOpen)
{
    if (!isOpen)
        return fail(m_file.errorString());
    m_format = audioFormat(m_file.format());
    emit durationChanged(duration());
    return true;
}

void KelAmplifiedAudioPlayer::play()
{
    if (!m_file.isOpen()) {
        fail(QStringLiteral("No audio source set"));
        return;
    }
    if (m_isPlaying || !openDevice())
        return;
    setPlaying(true);
    processAudioData();
    emit stateChanged(true);
}

void KelAmplifiedAudioPlayer::pause()
{
    if (!m_isPlaying)
        return;
    setPlaying(false);
    moveTo(std::max(heardFrame(), 0.0));
    emit stateChanged(false);
}

void KelAmplifiedAudioPlayer::stop()
{
    if (!m_isPlaying && position() == 0)
        return;
    setPlaying(false);
    moveTo(0);
    emit stateChanged(false);
    emit positionChanged(0);
}

void KelAmplifiedAudioPlayer::seek(qint64 ms)
{
    if (!m_file.isOpen())
        return;
    const bool wasPlaying = m_isPlaying;
    pause();
    const qint64 target = std::clamp<qint64>(ms, 0, duration());
    const qint64 frame = m_file.format().sampleRate * target / 1000;
    moveTo(double(frame));
    emit positionChanged(target);
    if (wasPlaying)
        play();
}

void KelAmplifiedAudioPlayer::setGain(double gain)
{
    m_gain.setTarget(gain);
}

void KelAmplifiedAudioPlayer::setMuted(bool on)
{
    m_gain.setMuted(on);
    if (m_sink)
        m_sink->setVolume(on ? 0.0 : 1.0);
}

void KelAmplifiedAudioPlayer::setRate(double rate)
{
    if (!(rate > 0) || std::isinf(rate) || rate == m_rate)
        return;
    m_first = nextFrame();
    m_made = 0;
    m_rate = rate;
    if (m_stretched)
        m_stretched->setSpeed(rate);
}

double KelAmplifiedAudioPlayer::exactPosition() const
{
    if (!m_file.isOpen())
        return 0;
    return std::clamp(heardFrame(), 0.0, double(m_file.frameCount())) * 1000.0 / m_file.format().sampleRate;
}

/// The frame of the file that the device is taking from its buffer; beyond the end of the file during the silence that
/// follows.
double KelAmplifiedAudioPlayer::heardFrame() const
{
    const int buffered = m_sink ? m_sink->bytesBuffered() : 0;
    const int unheard = (m_pending.size() + buffered) / std::max(m_file.frameBytes(), 1);
    return nextFrame() - unheard * m_rate;
}

void KelAmplifiedAudioPlayer::onAudioOutputStateChanged(QAudio::State state)
{
    if (!m_isPlaying)
        return;
    if (state == QAudio::IdleState && m_pending.isEmpty() && nextFrame() >= double(m_file.frameCount())) {
        stop();
    } else if (state == QAudio::StoppedState && m_sink->error() != QAudio::NoError) {
        const QAudio::Error error = m_sink->error();
        setPlaying(false);
        moveTo(std::max(heardFrame(), 0.0));
        fail(QStringLiteral("Audio output error: %1").arg(int(error)));
        emit stateChanged(false);
    }
}

void KelAmplifiedAudioPlayer::processAudioData()
{
    if (!m_isPlaying || !m_sink)
        return;
    // Never write more than fits: writing to a device that has just gone away is unsafe.
    int budget = m_sink->bytesFree();
    while (budget > 0) {
        if (m_pending.isEmpty())
            m_pending = nextPiece();
        const qint64 written = m_sink->write(m_pending.constData(), std::min(budget, m_pending.size()));
        if (written < 0)
            qCWarning(logAudio) << "KelAmplifiedAudioPlayer: Error writing audio data:" << written;
        if (written <= 0)
            return;
        m_pending.remove(0, int(written));
        budget -= int(written);
    }
}

/// The next frames of the file at the current rate, amplified. Silence follows the end of the file: a device may start
/// only once its buffer is full, and would never play a short remainder.
QByteArray KelAmplifiedAudioPlayer::nextPiece()
{
    const int frameBytes = m_file.frameBytes();
    const int frames = std::max(kPieceBytes / frameBytes, 1);
    const bool isOffset = m_format.sampleType() == QAudioFormat::UnSignedInt;
    QByteArray piece(frames * frameBytes, isOffset ? char(0x80) : char(0));
    if (m_stretched || shouldStretch())
        stretchTo(piece.data(), frames);
    else
        mapTo(piece.data(), frames);
    m_gain.apply(m_format, &piece);
    return piece;
}

bool KelAmplifiedAudioPlayer::shouldStretch() const
{
    return m_keepsPitch && std::abs(m_rate - 1.0) > kInaudibleChange &&
           StretchedSound::supports(m_file.format().sampleRate, m_file.format().channelCount, m_rate);
}

/// Makes the next frames with the pitch of the file.
void KelAmplifiedAudioPlayer::stretchTo(char *bytes, int frames)
{
    const WavFrameReader::Format &wav = m_file.format();
    const FloatSamples format{wav.bitsPerSample, wav.isFloat};
    if (!m_stretched) {
        const auto source = [this, format](qint64 first, int count, float *samples) {
            const int channels = m_file.format().channelCount;
            std::fill_n(samples, std::ptrdiff_t(count) * channels, 0.0F);
            for (int i = 0; i < count; ++i) {
                if (const char *stored = frame(first + i))
                    format.read(stored, channels, samples + std::ptrdiff_t(i) * channels);
            }
        };
        m_stretched.emplace(wav.sampleRate, wav.channelCount, source, nextFrame(), m_rate);
    }
    std::vector<float> samples(std::size_t(frames) * std::size_t(wav.channelCount));
    m_stretched->read(samples.data(), frames);
    format.write(samples.data(), qint64(samples.size()), bytes);
    m_made += frames;
}

/// Makes the next frames by dropping or repeating frames of the file.
void KelAmplifiedAudioPlayer::mapTo(char *bytes, int frames)
{
    const int frameBytes = m_file.frameBytes();
    for (int i = 0; i < frames; ++i, ++m_made) {
        if (const char *stored = frame(qint64(nextFrame())))
            std::memcpy(bytes + i * frameBytes, stored, size_t(frameBytes));
    }
}

/// A frame of the file; null outside of it, and where it cannot be read, which is logged once.
const char *KelAmplifiedAudioPlayer::frame(qint64 index)
{
    if (index < 0 || index >= m_file.frameCount())
        return nullptr;
    const char *const stored = m_file.frame(index);
    if (!stored && !std::exchange(m_isUnreadable, true))
        qCWarning(logAudio) << "KelAmplifiedAudioPlayer: Failed to seek in file";
    return stored;
}

void KelAmplifiedAudioPlayer::tick()
{
    if (isOver()) {
        stop();
        return;
    }
    emit positionChanged(position());
    processAudioData();
}

bool KelAmplifiedAudioPlayer::openDevice()
{
    if (!m_sink) {
        m_sink = m_createSink(m_format);
        connect(m_sink.get(), &AudioSink::stateChanged, this, &KelAmplifiedAudioPlayer::onAudioOutputStateChanged);
        connect(m_sink.get(), &AudioSink::notify, this, &KelAmplifiedAudioPlayer::processAudioData);
    }
    m_sink->setVolume(m_gain.isMuted() ? 0.0 : 1.0);
    const bool wasMissing = std::exchange(m_isDeviceMissing, !m_sink->start());
    if (m_isDeviceMissing && !wasMissing)
        fail(QStringLiteral("Failed to start audio output device"));
    return !m_isDeviceMissing;
}

void KelAmplifiedAudioPlayer::closeDevice()
{
    if (!m_sink)
        return;
    m_sink->disconnect(this);
    m_sink->stop();
    m_sink.release()->deleteLater(); // the call may come from one of its signals
}

void KelAmplifiedAudioPlayer::setPlaying(bool on)
{
    m_isPlaying = on;
    if (on)
        m_feedTimer.start();
    else
        m_feedTimer.stop();
}

/// Drops what the device has buffered.
void KelAmplifiedAudioPlayer::moveTo(double frame)
{
    if (m_sink)
        m_sink->stop();
    m_pending.clear();
    m_stretched.reset();
    m_first = frame;
    m_made = 0;
}

bool KelAmplifiedAudioPlayer::fail(const QString &text)
{
    m_errorString = text;
    qCWarning(logAudio).noquote() << "[KelAmplifiedAudioPlayer]" << text;
    emit errorOccurred(text);
    return false;
}
