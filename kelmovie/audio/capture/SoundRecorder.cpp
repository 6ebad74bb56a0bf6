#include "audio/capture/SoundRecorder.h"

#include "audio/capture/CaptureParts.h"
#include "audio/capture/DeleteWhenFinished.h"
#include "audio/capture/WasapiCaptureThread.h"
#include "files/PrivateFile.h"
#include "logging/Log.h"
#include "recording/wav/SoundFiles.h"
#include "tasks/BackgroundTasks.h"

#include <QDebug>
#include <QFileInfo>

#include <chrono>
#include <future>
#include <numeric>
#include <utility>

namespace kel
{

namespace
{
constexpr unsigned long kStopWaitMs = 3000;
constexpr std::chrono::seconds kJoinWait(3); // for a disk that responds slowly
constexpr qint64 kQuicklyJoinedBytes = 64 << 20;
/// For a thread without a device, which has no more sound to write and may be waiting for a server that hangs.
constexpr unsigned long kIdleStopWaitMs = 200;

bool isQuicklyJoined(const QStringList &parts)
{
    const auto add = [](qint64 bytes, const QString &part) { return bytes + QFileInfo(part).size(); };
    return parts.size() == 1 || std::accumulate(parts.begin(), parts.end(), qint64(0), add) <= kQuicklyJoinedBytes;
}
} // namespace

SoundRecorder::SoundRecorder(const Source &source, const QString &outputPath, FailureHandler failed, QObject *parent,
                             const CaptureDependencies &dependencies)
    : QObject(parent)
    , m_source(source)
    , m_outputPath(outputPath)
    , m_failed(std::move(failed))
    , m_dependencies(dependencies)
    , m_format(source.format.bytes())
{
    makePrivateDirectory(QFileInfo(outputPath).absolutePath()); // a part that cannot be created there reports it
}

SoundRecorder::~SoundRecorder()
{
    if (m_isRecording)
        stopRecording();
    endThread();
}

bool SoundRecorder::start(qint64 atMs)
{
    if (m_isRecording) {
        qCWarning(logAudio) << m_source.alreadyRunning;
        return false;
    }
    if (m_isPaused) {
        resume(atMs);
        return m_isRecording;
    }
    m_parts.clear();
    m_partIndex = 0;
    m_currentPart = partPath();
    m_isRecording = startThread(timeOf(atMs));
    return m_isRecording;
}

void SoundRecorder::pause(qint64 atMs)
{
    if (!m_isRecording) {
        qCWarning(logAudio) << m_source.notRunning;
        return;
    }
    m_files->pauseAt(timeOf(atMs));
    m_parts.append(std::exchange(m_currentPart, QString()));
    ++m_partIndex;
    m_isRecording = false;
    m_isPaused = true;
}

void SoundRecorder::resume(qint64 atMs)
{
    if (!m_isPaused) {
        qCWarning(logAudio) << m_source.notPaused;
        return;
    }
    m_currentPart = partPath();
    m_files->resumeAt(timeOf(atMs), m_currentPart);
    m_isRecording = true;
    m_isPaused = false;
}

void SoundRecorder::prepareStop()
{
    if (m_isRecording)
        pause();
    if (m_thread)
        m_thread->requestStop();
}

void SoundRecorder::stopRecording()
{
    prepareStop();
    endThread();
    if (!m_parts.isEmpty()) {
        joinParts();
        m_parts.clear();
        m_partIndex = 0;
    }
    m_isPaused = false;
}

/// Much sound is joined in the background, because an hour takes seconds. Its parts can be played meanwhile, and stay
/// if joining them fails.
void SoundRecorder::joinParts()
{
    const bool isWaitedFor = isQuicklyJoined(m_parts);
    const auto joined = std::make_shared<std::promise<QString>>();
    std::future<QString> problem = joined->get_future();
    BackgroundTasks::run([joined, merge = m_source.merge, parts = m_parts, output = m_outputPath] {
        joined->set_value(merge(parts, output));
    });
    if (isWaitedFor && problem.wait_for(kJoinWait) == std::future_status::ready)
        report(problem.get());
}

qint64 SoundRecorder::timeOf(qint64 atMs) const
{
    return atMs == kNow ? m_dependencies.nowMs() : atMs;
}

QString SoundRecorder::partPath() const
{
    return soundPartPath(m_outputPath, m_partIndex);
}

bool SoundRecorder::startThread(qint64 startMs)
{
    endThread();
    m_files = std::make_shared<CaptureParts>(m_currentPart, startMs);
    m_thread = new WasapiCaptureThread(m_source.flow, m_format, m_files, m_dependencies, this);
    connect(m_thread, &WasapiCaptureThread::problemFound, this, &SoundRecorder::reportProblems);
    m_thread->start(QThread::InheritPriority);
    if (m_thread->isRunning())
        return true;
    report(QStringLiteral("no thread can be started for the sound"));
    return false;
}

void SoundRecorder::endThread()
{
    if (!m_thread)
        return;
    m_thread->requestStop();
    const bool hasEnded = m_thread->wait(m_thread->isCapturing() ? kStopWaitMs : kIdleStopWaitMs);
    const bool isWhole = m_files->finish();
    m_thread->disconnect(this);
    reportProblems();
    if (!isWhole)
        report(QStringLiteral("the disk does not respond; the last sound is missing"));
    else if (!hasEnded)
        report(QStringLiteral("the sound system does not respond; the last sound is missing"));
    m_format = m_thread->format();
    deleteWhenFinished(std::exchange(m_thread, nullptr));
}

void SoundRecorder::reportProblems()
{
    if (!m_thread) // a notification that was on its way
        return;
    const QStringList problems = m_thread->takeProblems();
    for (const QString &problem : problems)
        report(problem);
}

void SoundRecorder::report(const QString &problem)
{
    if (problem.isEmpty())
        return;
    m_error = problem;
    if (m_failed)
        m_failed(problem);
}

} // namespace kel
