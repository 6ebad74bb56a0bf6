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
constexpr qint64 SilenceAfterMs = 100;
constexpr qint64 SizesIntervalMs = 1000;
constexpr qint64 SearchIntervalMs = 1000;
constexpr DWORD EventWaitMs = 200;
} // namespace

WasapiCaptureThread::WasapiCaptureThread(const QString &filePath, qint64 startMs, const QByteArray &format,
                                         const CaptureDependencies &seams, FailureHandler failed, QObject *parent)
    : QThread(parent)
    , m_firstPath(filePath)
    , m_startMs(startMs)
    , m_seams(seams)
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
    m_device = std::make_unique<CaptureDevice>(m_seams, m_seams.flow);
    if (!m_device->open(CaptureFormat(format())))
        reportOnce(QStringLiteral("there is no output whose sound could be recorded"));
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
        QFile::remove(m_firstPath); // its silence would put what a later part brings off its time
        reportOnce(QStringLiteral("the output does not let its sound be recorded"));
        return;
    }
    if (!m_device->streamFormat().isIntegerPcm() || !captureByEvents())
        captureByPolling();
    drain();
}

/// Integer formats wait for the device's event. False when there is none: the stream was opened for polling, so a
/// device may well refuse it, and the recording must not go without sound for that.
bool WasapiCaptureThread::captureByEvents()
{
    const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    if (!event || !m_device->setEventHandle(event)) {
        qCWarning(logAudio) << "设置WASAPI事件句柄失败，格式标签:" << m_device->streamFormat().get()->wFormatTag
                            << "，实际标签:" << int(WavHeader::Pcm);
        if (event)
            CloseHandle(event);
        return false;
    }
    while (!m_stopRequested) {
        obeyRequests();
        if (WaitForSingleObject(event, EventWaitMs) == WAIT_OBJECT_0) {
            while (readPacket())
                continue;
        } else {
            padWithSilence();
        }
        keepSizes();
    }
    CloseHandle(event);
    return true;
}

void WasapiCaptureThread::captureByPolling()
{
    m_lastPacketMs = m_seams.nowMs();
    while (!m_stopRequested) {
        obeyRequests();
        if (!readPacket()) {
            if (m_seams.nowMs() - m_lastPacketMs >= SilenceAfterMs) {
                padWithSilence();
                m_lastPacketMs = m_seams.nowMs();
            }
            m_seams.rest();
        }
        keepSizes();
        if (m_isDeviceGone)
            replaceDevice();
    }
}

/// What the device still has belongs to the recording as far as it comes from before its end.
void WasapiCaptureThread::drain()
{
    obeyRequests();
    while (readPacket())
        continue;
    m_device->stop();
    m_part->close();
    checkPart();
}

void WasapiCaptureThread::obeyRequests()
{
    Requests asked;
    {
        const QMutexLocker lock(&m_mutex);
        asked = m_requests;
        m_requests.pendingPath.clear();
    }
    if (!asked.pendingPath.isEmpty()) {
        m_part->setEnd(asked.currentEndMs);
        m_part->close();
        m_part->open(asked.pendingPath, asked.pendingStartMs);
        checkPart();
    }
    if (asked.isPaused)
        m_part->setEnd(asked.pausedAtMs);
}

/// While paused the part takes only what was recorded before and comes late.
bool WasapiCaptureThread::readPacket()
{
    CaptureDevice::Packet packet;
    const CaptureDevice::Answer answer = m_device->acquire(&packet);
    m_isDeviceGone = answer == CaptureDevice::Answer::Gone;
    if (answer != CaptureDevice::Answer::Packet)
        return false;
    obeyRequests();
    m_part->writePacket(packet.data, packet.size, packet.recordedAtMs);
    m_device->release();
    m_lastPacketMs = m_seams.nowMs();
    checkPart();
    return true;
}

/// Also while paused: the part is cut back to where the pause began when it is closed, and should the pause never end,
/// its file is as long as the time.
void WasapiCaptureThread::padWithSilence()
{
    m_part->writeSilence();
    checkPart();
}

/// A process that dies leaves a file that says how much sound is in it.
void WasapiCaptureThread::keepSizes()
{
    const qint64 nowMs = m_seams.nowMs();
    if (nowMs - m_lastSizesMs < SizesIntervalMs)
        return;
    m_lastSizesMs = nowMs;
    m_part->updateSizes();
}

/// The sound goes on in the same format, so that one file holds it.
void WasapiCaptureThread::replaceDevice()
{
    const qint64 nowMs = m_seams.nowMs();
    if (nowMs - m_lastSearchMs < SearchIntervalMs)
        return;
    m_lastSearchMs = nowMs;
    const CaptureFormat format = m_device->streamFormat();
    auto device = std::make_unique<CaptureDevice>(m_seams, m_seams.flow);
    if (device->open(format) && device->streamFormat().bytes() == format.bytes() && device->start()) {
        qCWarning(logAudio) << "[WasapiCaptureThread] The output went away; going on with the new default output";
        m_device = std::move(device);
        m_isDeviceGone = false;
        return;
    }
    reportOnce(QStringLiteral("the output went away; silence is recorded until there is one again"));
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
