#include "audio/capture/WasapiCaptureThread.h"

#include "audio/capture/CaptureDevice.h"
#include "logging/Log.h"
#include "recording/wav/WavPartWriter.h"

#include <QDebug>
#include <QFile>
#include <QMutexLocker>

#include <utility>

namespace kel
{

namespace
{
constexpr qint64 kSilenceAfterMs = 100;
constexpr qint64 kSizesIntervalMs = 1000;
constexpr qint64 kSearchIntervalMs = 1000;
constexpr DWORD kEventWaitMs = 200;
} // namespace

WasapiCaptureThread::WasapiCaptureThread(const QString &filePath, qint64 startMs, const QByteArray &format,
                                         const CaptureDependencies &dependencies, FailureHandler failed,
                                         QObject *parent)
    : QThread(parent)
    , m_firstPath(filePath)
    , m_startMs(startMs)
    , m_dependencies(dependencies)
    , m_failed(std::move(failed))
    , m_format(format)
{
}

WasapiCaptureThread::~WasapiCaptureThread()
{
    requestStop();
    wait();
}

void WasapiCaptureThread::pauseAt(qint64 atMs)
{
    const QMutexLocker lock(&m_mutex);
    m_requests.isPaused = true;
    m_requests.pausedAtMs = atMs;
}

void WasapiCaptureThread::resumeAt(qint64 atMs, const QString &filePath)
{
    const QMutexLocker lock(&m_mutex);
    if (m_requests.pendingPath.isEmpty())
        m_requests.currentEndMs = m_requests.pausedAtMs;
    m_requests.pendingPath = filePath;
    m_requests.pendingStartMs = atMs;
    m_requests.isPaused = false;
}

QByteArray WasapiCaptureThread::format() const
{
    const QMutexLocker lock(&m_mutex);
    return m_format;
}

void WasapiCaptureThread::run()
{
    CoInitialize(nullptr);
    m_device = std::make_unique<CaptureDevice>(m_dependencies, m_dependencies.flow);
    if (!m_device->open(CaptureFormat(format())))
        reportOnce(QStringLiteral("there is no output whose sound can be recorded"));
    else
        capture();
    m_part.reset();
    m_device.reset();
    CoUninitialize();
}

void WasapiCaptureThread::capture()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_format = m_device->deviceFormat().bytes();
    }
    m_part = std::make_unique<WavPartWriter>(m_device->streamFormat().wavHeader());
    if (!m_part->open(m_firstPath, m_startMs)) {
        qCWarning(logAudio) << "无法打开输出文件:" << m_firstPath;
        checkPart();
        return;
    }
    m_part->writeSilence();
    m_part->updateSizes();
    if (!m_device->start()) {
        qCWarning(logAudio) << "启动音频客户端失败";
        m_part->close();
        QFile::remove(m_firstPath); // its silence would shift the sound of later parts
        reportOnce(QStringLiteral("the sound of the output cannot be recorded"));
        return;
    }
    if (!m_device->streamFormat().isIntegerPcm() || !captureByEvents())
        captureByPolling();
    drain();
}

/// Waits for the device's event instead of polling, for integer formats. False when the device refuses events, which it
/// may, because the stream was opened for polling; the caller then has to poll.
bool WasapiCaptureThread::captureByEvents()
{
    const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    if (!event || !m_device->setEventHandle(event)) {
        qCWarning(logAudio) << "设置WASAPI事件句柄失败，格式标签:" << m_device->streamFormat().get()->wFormatTag
                            << "，实际标签:" << int(WavHeader::kPcm);
        if (event)
            CloseHandle(event);
        return false;
    }
    while (!m_stopRequested) {
        handleRequests();
        if (WaitForSingleObject(event, kEventWaitMs) == WAIT_OBJECT_0) {
            while (readPacket())
                continue;
        } else {
            padWithSilence();
        }
        updateSizesRegularly();
    }
    CloseHandle(event);
    return true;
}

void WasapiCaptureThread::captureByPolling()
{
    m_lastPacketMs = m_dependencies.nowMs();
    while (!m_stopRequested) {
        handleRequests();
        if (!readPacket()) {
            if (m_dependencies.nowMs() - m_lastPacketMs >= kSilenceAfterMs) {
                padWithSilence();
                m_lastPacketMs = m_dependencies.nowMs();
            }
            m_dependencies.rest();
        }
        updateSizesRegularly();
        if (m_isDeviceGone)
            replaceDevice();
    }
}

/// Records what the device still has buffered from before the end.
void WasapiCaptureThread::drain()
{
    handleRequests();
    while (readPacket())
        continue;
    m_device->stop();
    m_part->close();
    checkPart();
}

void WasapiCaptureThread::handleRequests()
{
    Requests requests;
    {
        const QMutexLocker lock(&m_mutex);
        requests = m_requests;
        m_requests.pendingPath.clear();
    }
    if (!requests.pendingPath.isEmpty()) {
        m_part->setEnd(requests.currentEndMs);
        m_part->close();
        m_part->open(requests.pendingPath, requests.pendingStartMs);
        checkPart();
    }
    if (requests.isPaused)
        m_part->setEnd(requests.pausedAtMs);
}

/// While paused, the part accepts only late packets from before the pause.
bool WasapiCaptureThread::readPacket()
{
    CaptureDevice::Packet packet;
    const CaptureDevice::Result result = m_device->acquire(&packet);
    m_isDeviceGone = result == CaptureDevice::Result::Gone;
    if (result != CaptureDevice::Result::Packet)
        return false;
    handleRequests();
    m_part->writePacket(packet.data, packet.size, packet.recordedAtMs);
    m_device->release();
    m_lastPacketMs = m_dependencies.nowMs();
    checkPart();
    return true;
}

/// Called also while paused: closing the part cuts it back to the start of the pause, and if the process dies before
/// that, the duration of the file is the time that passed.
void WasapiCaptureThread::padWithSilence()
{
    m_part->writeSilence();
    checkPart();
}

/// If the process is killed, the header states about how much sound the file has.
void WasapiCaptureThread::updateSizesRegularly()
{
    const qint64 nowMs = m_dependencies.nowMs();
    if (nowMs - m_lastSizesMs < kSizesIntervalMs)
        return;
    m_lastSizesMs = nowMs;
    m_part->updateSizes();
}

/// The new device has to deliver the same format, so that one file can hold the sound.
void WasapiCaptureThread::replaceDevice()
{
    const qint64 nowMs = m_dependencies.nowMs();
    if (nowMs - m_lastSearchMs < kSearchIntervalMs)
        return;
    m_lastSearchMs = nowMs;
    const CaptureFormat format = m_device->streamFormat();
    auto device = std::make_unique<CaptureDevice>(m_dependencies, m_dependencies.flow);
    if (device->open(format) && device->streamFormat().bytes() == format.bytes() && device->start()) {
        qCWarning(logAudio) << "[WasapiCaptureThread] The output was removed; continuing with the new default output";
        m_device = std::move(device);
        m_isDeviceGone = false;
        return;
    }
    reportOnce(QStringLiteral("the output was removed; silence is recorded until there is one again"));
}

void WasapiCaptureThread::checkPart()
{
    if (!m_part->errorString().isEmpty())
        reportOnce(m_part->errorString());
}

void WasapiCaptureThread::reportOnce(const QString &problem)
{
    if (std::exchange(m_hasFailed, true) || !m_failed)
        return;
    m_failed(problem);
}

} // namespace kel
