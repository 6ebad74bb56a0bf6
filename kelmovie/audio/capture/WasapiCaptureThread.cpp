#include "audio/capture/WasapiCaptureThread.h"

#include "audio/capture/CaptureParts.h"
#include "logging/Log.h"

#include <QDebug>
#include <QMutexLocker>

#include <utility>

namespace kel
{

namespace
{
constexpr qint64 kSilenceAfterMs = 100;
constexpr qint64 kHangMs = 10'000; // a shorter hang leaves only silence in which nothing was played
constexpr qint64 kSizesIntervalMs = 1000;
constexpr qint64 kSearchIntervalMs = 1000;
constexpr int kDrainRounds = 10; // a device delivers its last sound after a few
} // namespace

WasapiCaptureThread::WasapiCaptureThread(EDataFlow flow, const QByteArray &format, std::shared_ptr<CaptureParts> parts,
                                         const CaptureDependencies &dependencies, QObject *parent)
    : QThread(parent)
    , m_flow(flow)
    , m_parts(std::move(parts))
    , m_dependencies(dependencies)
    , m_format(format)
{
}

QByteArray WasapiCaptureThread::format() const
{
    const QMutexLocker lock(&m_mutex);
    return m_format;
}

QStringList WasapiCaptureThread::takeProblems()
{
    const QMutexLocker lock(&m_mutex);
    return std::exchange(m_problems, {});
}

void WasapiCaptureThread::run()
{
    CoInitialize(nullptr);
    m_lastPacketMs = m_dependencies.nowMs();
    const CaptureFormat required(format());
    if (!required.isNull())
        begin(required);
    while (!m_stopRequested) {
        if (!m_device && m_dependencies.nowMs() >= m_nextSearchMs)
            openDevice();
        if (!readPacket()) {
            padWithSilence();
            waitForSound();
        }
        updateSizesRegularly();
    }
    drain();
    closeDevice();
    CoUninitialize();
}

/// A device that replaces another one has to deliver the same format, so that one file can hold the sound.
void WasapiCaptureThread::openDevice()
{
    auto device = std::make_unique<CaptureDevice>(m_dependencies, m_flow);
    CaptureDevice::Failure failure = device->open(CaptureFormat(format()));
    if (failure == CaptureDevice::Failure::None) {
        begin(device->format());
        failure = device->start();
    }
    m_nextSearchMs = m_dependencies.nowMs() + kSearchIntervalMs;
    if (failure != CaptureDevice::Failure::None) {
        report(failure);
        return;
    }
    if (m_flow == eRender && device->format().isIntegerPcm() && !device->enableEvents())
        qCWarning(logAudio) << "设置WASAPI事件句柄失败，格式标签:" << device->format().get()->wFormatTag
                            << "，实际标签:" << int(WavHeader::kPcm);
    if (m_hasFailed)
        qCWarning(logAudio) << "[WasapiCaptureThread] Recording the default" << qPrintable(deviceName());
    m_device = std::move(device);
    m_isCapturing = true;
    m_lastSoundMs = m_dependencies.nowMs();
}

/// Begins to write sound in this format, once.
void WasapiCaptureThread::begin(const CaptureFormat &format)
{
    if (std::exchange(m_hasBegun, true))
        return;
    {
        const QMutexLocker lock(&m_mutex);
        m_format = format.bytes();
    }
    m_parts->setFormat(format.wavHeader());
    checkParts();
}

void WasapiCaptureThread::closeDevice()
{
    m_device.reset();
    m_isCapturing = false;
}

bool WasapiCaptureThread::readPacket()
{
    CaptureDevice::Packet packet;
    const auto result = m_device ? m_device->acquire(&packet) : CaptureDevice::Result::Empty;
    if (result == CaptureDevice::Result::Gone) {
        closeDevice();
        reportOnce(
            QStringLiteral("the %1 was removed; silence is recorded until there is one again").arg(deviceName()));
    }
    if (result != CaptureDevice::Result::Packet)
        return false;
    m_parts->writePacket(packet.data, packet.size, packet.recordedAtMs);
    m_device->release();
    m_lastPacketMs = m_lastSoundMs = m_dependencies.nowMs();
    checkParts();
    return true;
}

void WasapiCaptureThread::padWithSilence()
{
    const qint64 nowMs = m_dependencies.nowMs();
    if (nowMs - m_lastPacketMs < kSilenceAfterMs)
        return;
    m_lastPacketMs = nowMs;
    m_parts->writeSilenceTo(nowMs);
    checkParts();
    if (nowMs - m_lastSoundMs >= kHangMs)
        checkDevice();
}

void WasapiCaptureThread::waitForSound()
{
    if (m_device)
        m_device->wait();
    else
        m_dependencies.rest();
}

/// Records what was heard before the end and is still on its way.
void WasapiCaptureThread::drain()
{
    for (int round = 0; m_device && round < kDrainRounds && !m_parts->isComplete(); ++round) {
        while (readPacket())
            continue;
        waitForSound();
    }
    if (!m_parts->isComplete())
        checkDevice();
    m_parts->finish();
    if (m_device)
        m_device->stop();
    checkParts();
}

/// If the process is killed, the header states about how much sound the file has.
void WasapiCaptureThread::updateSizesRegularly()
{
    const qint64 nowMs = m_dependencies.nowMs();
    if (nowMs - m_lastSizesMs < kSizesIntervalMs)
        return;
    m_lastSizesMs = nowMs;
    m_parts->updateSizes();
}

void WasapiCaptureThread::checkParts()
{
    const QString problem = m_parts->errorString();
    if (!problem.isEmpty())
        reportOnce(problem);
}

void WasapiCaptureThread::checkDevice()
{
    if (m_device && !m_device->isResponding())
        report(CaptureDevice::Failure::NoServer);
}

void WasapiCaptureThread::report(CaptureDevice::Failure failure)
{
    const QString notRecorded = QStringLiteral("the sound of the %1 cannot be recorded").arg(deviceName());
    switch (failure) {
    case CaptureDevice::Failure::NoServer:
        reportOnce(QStringLiteral("the sound system does not respond"));
        break;
    case CaptureDevice::Failure::NoBufferSize:
        reportOnce(notRecorded, "获取音频缓冲区大小失败");
        break;
    case CaptureDevice::Failure::NoCaptureClient:
        reportOnce(notRecorded, "获取音频捕获客户端失败");
        break;
    case CaptureDevice::Failure::NotStarted:
        reportOnce(notRecorded, "启动音频客户端失败");
        break;
    default:
        reportOnce(QStringLiteral("there is no %1").arg(deviceName()));
    }
}

void WasapiCaptureThread::reportOnce(const QString &problem, const char *log)
{
    if (std::exchange(m_hasFailed, true))
        return;
    if (log)
        qCWarning(logAudio) << log;
    {
        const QMutexLocker lock(&m_mutex);
        m_problems << problem;
    }
    emit problemFound();
}

QString WasapiCaptureThread::deviceName() const
{
    return m_flow == eRender ? QStringLiteral("sound output") : QStringLiteral("microphone");
}

} // namespace kel
