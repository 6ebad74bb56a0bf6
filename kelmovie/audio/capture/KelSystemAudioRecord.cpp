#include "audio/capture/KelSystemAudioRecord.h"

#include "logging/Log.h"
#include "recording/wav/SoundFiles.h"
#include "recording/wav/WavPartMerger.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>

#include <utility>

using namespace kel;

namespace
{
constexpr unsigned long kStopWaitMs = 3000;
} // namespace

KelSystemAudioRecord::KelSystemAudioRecord(const QString &outputPath, WasapiCaptureThread::FailureHandler failed,
                                           QObject *parent, const CaptureDependencies &dependencies)
    : QObject(parent)
    , m_outputPath(outputPath)
    , m_failed(std::move(failed))
    , m_dependencies(dependencies)
{
    QDir().mkpath(QFileInfo(outputPath).absolutePath());
}

KelSystemAudioRecord::~KelSystemAudioRecord()
{
    if (m_isRecording)
        stopRecording();
    endThread();
}

bool KelSystemAudioRecord::start(qint64 atMs)
{
    if (m_isRecording && !m_isPaused) {
        qCWarning(logAudio) << "系统音频录制已在运行中";
        return false;
    }
    if (m_isPaused) {
        resume(atMs);
        return true;
    }
    m_parts.clear();
    m_partIndex = 0;
    m_unrecordedMs = 0;
    m_currentPart = partPath();
    startThread(timeOf(atMs));
    m_isRecording = true;
    return true;
}

void KelSystemAudioRecord::pause(qint64 atMs)
{
    if (!m_isRecording) {
        qCWarning(logAudio) << "系统音频录制未在运行";
        return;
    }
    const qint64 endMs = timeOf(atMs);
    if (m_thread)
        m_thread->pauseAt(endMs);
    if (!m_thread || !m_thread->isRunning())
        m_unrecordedMs += endMs - m_partStartMs;
    if (!m_currentPart.isEmpty()) {
        m_parts.append(std::exchange(m_currentPart, QString()));
        ++m_partIndex;
    }
    m_isRecording = false;
    m_isPaused = true;
}

void KelSystemAudioRecord::resume(qint64 atMs)
{
    if (!m_isPaused) {
        qCWarning(logAudio) << "系统音频录制未处于暂停状态";
        return;
    }
    m_currentPart = partPath();
    m_partStartMs = timeOf(atMs);
    if (m_thread && m_thread->isRunning())
        m_thread->resumeAt(m_partStartMs, m_currentPart);
    else
        startThread(m_partStartMs);
    m_isRecording = true;
    m_isPaused = false;
}

void KelSystemAudioRecord::stopRecording()
{
    if (m_isRecording)
        pause();
    endThread();
    if (!m_currentPart.isEmpty())
        m_parts.append(std::exchange(m_currentPart, QString()));
    if (!m_parts.isEmpty()) {
        const QString problem = mergePartFiles(m_parts, m_outputPath);
        if (!problem.isEmpty() && m_failed)
            m_failed(problem);
        m_parts.clear();
        m_partIndex = 0;
    }
    m_isRecording = false;
    m_isPaused = false;
}

qint64 KelSystemAudioRecord::timeOf(qint64 atMs) const
{
    return atMs == kNow ? m_dependencies.nowMs() : atMs;
}

QString KelSystemAudioRecord::partPath() const
{
    return soundPartPath(m_outputPath, m_partIndex);
}

/// Time that an earlier, failed capture did not record becomes silence at the start of the part, so that the following
/// sound keeps its time.
void KelSystemAudioRecord::startThread(qint64 startMs)
{
    endThread();
    m_partStartMs = startMs;
    m_thread = new WasapiCaptureThread(m_currentPart, startMs - std::exchange(m_unrecordedMs, 0), m_format,
                                       m_dependencies, m_failed, this);
    m_thread->start(QThread::InheritPriority);
}

void KelSystemAudioRecord::endThread()
{
    if (!m_thread)
        return;
    m_thread->requestStop();
    m_thread->wait(kStopWaitMs);
    m_format = m_thread->format();
    m_thread->deleteLater();
    m_thread = nullptr;
}
