#include "record/KelRecordVoiceTrack.h"

#include "audio/capture/KelSystemAudioRecord.h"
#include "audio/capture/MicrophoneBackend.h"
#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"
#include "recording/wav/SoundFiles.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QElapsedTimer>
#include <QMetaEnum>
#include <QThread>
#include <QUrl>

#include <exception>
#include <utility>

using namespace kel;

namespace
{
constexpr unsigned long kWindDownMs = 50;

qint64 monotonicMs()
{
    QElapsedTimer timer;
    timer.start();
    return timer.msecsSinceReference();
}

bool isBusy(const QAudioRecorder &recorder)
{
    const QMediaRecorder::Status status = recorder.status();
    return status == QMediaRecorder::StartingStatus || status == QMediaRecorder::RecordingStatus ||
           status == QMediaRecorder::FinalizingStatus;
}

QByteArray keyOf(const char *enumerator, int value)
{
    const QMetaObject &recorder = QMediaRecorder::staticMetaObject;
    return QByteArray("QMediaRecorder::") +
           recorder.enumerator(recorder.indexOfEnumerator(enumerator)).valueToKey(value);
}
} // namespace

KelRecordVoiceTrack::KelRecordVoiceTrack(const QRect &recordArea, const QString &trackDir, QObject *parent)
    : KelRecordTrack(recordArea, trackDir, parent)
    , m_systemAudioPath(soundFilePath(trackDir, KelRecordingFiles::kSystemAudio, QDateTime::currentDateTime()))
    , m_microphonePath(soundFilePath(trackDir, KelRecordingFiles::kMicrophone, QDateTime::currentDateTime()))
{
    m_microphoneSettings.setCodec(QStringLiteral("audio/wav"));
    m_microphoneSettings.setSampleRate(44100);
    m_microphoneSettings.setChannelCount(2);
    m_microphoneSettings.setQuality(QMultimedia::HighQuality);
    QDir().mkpath(trackDir);
}

KelRecordVoiceTrack::~KelRecordVoiceTrack()
{
    if (m_isRecording || m_isPaused)
        KelRecordVoiceTrack::stopRecording(0, 0);
    cleanupAudioRecorders();
}

void KelRecordVoiceTrack::setSystemAudioEnabled(bool enabled)
{
    m_systemAudioEnabled = enabled;
}

void KelRecordVoiceTrack::setMicrophoneEnabled(bool enabled)
{
    m_microphoneEnabled = enabled;
    if (enabled)
        MicrophoneBackend::preload(); // now, because it would delay the recording's clock at the start
}

void KelRecordVoiceTrack::noteClockChange()
{
    m_clockChangeMs = monotonicMs();
}

/// The time noted for the current start, pause or stop; the current time if none was noted.
qint64 KelRecordVoiceTrack::takeClockChange()
{
    const qint64 noted = std::exchange(m_clockChangeMs, 0);
    return noted > 0 ? noted : monotonicMs();
}

void KelRecordVoiceTrack::setUpRecorders()
{
    if (m_systemAudioEnabled && !m_systemAudio) {
        m_systemAudio = new KelSystemAudioRecord(
            m_systemAudioPath, [this](const QString &problem) { reportFailure(KelTrackNames::kSystemAudio, problem); },
            this);
    }
    if (m_microphoneEnabled && !m_microphone) {
        const auto presence = MicrophoneBackend::presence();
        m_isMicrophonePresenceUnknown = presence == MicrophoneBackend::Presence::Unknown;
        if (presence == MicrophoneBackend::Presence::Missing) {
            m_microphoneEnabled = false;
            reportFailure(KelTrackNames::kMicrophone, QStringLiteral("there is no microphone"));
        } else {
            setUpMicrophone();
        }
    }
}

void KelRecordVoiceTrack::setUpMicrophone()
{
    m_microphone = new QAudioRecorder(this);
    MicrophoneBackend::setWavSettings(*m_microphone, m_microphoneSettings);
    m_microphone->setOutputLocation(QUrl::fromLocalFile(m_microphonePath));
    connect(m_microphone, QOverload<QMediaRecorder::Error>::of(&QMediaRecorder::error), this,
            &KelRecordVoiceTrack::onMicrophoneError);
    connect(m_microphone, &QMediaRecorder::statusChanged, this, &KelRecordVoiceTrack::onMicrophoneStatusChanged);
    connect(m_microphone, &QMediaRecorder::stateChanged, this, &KelRecordVoiceTrack::onMicrophoneStateChanged);
}

void KelRecordVoiceTrack::startRecording()
{
    if (m_isPaused) {
        resumeRecording(takeClockChange());
        return;
    }
    if (m_isRecording)
        return;
    const qint64 startMs = takeClockChange();
    cleanupAudioRecorders();
    setUpRecorders();
    m_isRecording = true;
    m_isPaused = false;
    if (m_systemAudioEnabled && m_systemAudio)
        m_systemAudio->start(startMs);
    startMicrophone(startMs, "启动麦克风录制时发生异常");
}

void KelRecordVoiceTrack::pauseRecording()
{
    if (!m_isRecording)
        return;
    const qint64 endMs = takeClockChange();
    if (m_systemAudioEnabled && m_systemAudio && !m_isPaused)
        m_systemAudio->pause(endMs);
    endMicrophonePart(endMs);
    m_isPaused = true;
}

void KelRecordVoiceTrack::resumeRecording(qint64 atMs)
{
    if (m_systemAudioEnabled && m_systemAudio) {
        m_systemAudio->resume(atMs);
    } else {
        qCWarning(logRecord) << "[VoiceTrack] Cannot resume system audio - enabled:" << m_systemAudioEnabled
                             << "recorder:" << (m_systemAudio != nullptr);
    }
    if (m_microphone && isBusy(*m_microphone)) {
        // It has yet to process the completion of its last file, and would mistake it for the end of the next one.
        delete m_microphone;
        setUpMicrophone();
    }
    startMicrophone(atMs, "恢复麦克风录制时发生异常");
    m_isRecording = true;
    m_isPaused = false;
}

void KelRecordVoiceTrack::startMicrophone(qint64 atMs, const char *exceptionText)
{
    if (!m_microphone || !m_microphoneEnabled)
        return;
    const QString path = soundPartPath(m_microphonePath, m_microphonePartIndex);
    m_microphoneStartMs = atMs;
    m_microphoneBeginMs = 0;
    try {
        m_microphone->setOutputLocation(QUrl::fromLocalFile(path));
        m_microphone->record();
        m_currentMicrophonePart = path;
    } catch (const std::exception &exception) {
        qCCritical(logRecord) << exceptionText;
        m_microphoneEnabled = false;
        reportFailure(KelTrackNames::kMicrophone, QString::fromLocal8Bit(exception.what()));
    }
}

void KelRecordVoiceTrack::endMicrophonePart(qint64 atMs)
{
    if (!m_microphone || m_currentMicrophonePart.isEmpty())
        return;
    if (m_microphone->state() == QMediaRecorder::RecordingState)
        m_microphone->stop();
    const qint64 lateMs = qMax(m_microphoneBeginMs, m_microphoneStartMs) - m_microphoneStartMs;
    m_microphoneTimes.append({atMs - m_microphoneStartMs, lateMs, monotonicMs() - atMs});
    MicrophoneBackend::waitForCompleteFile(*m_microphone, m_currentMicrophonePart);
    m_microphoneParts.append(std::exchange(m_currentMicrophonePart, QString()));
    ++m_microphonePartIndex;
}

void KelRecordVoiceTrack::stopRecording(qint64 frameCount, qint64 durationMs)
{
    qCInfo(logRecord) << "[VoiceTrack] Stopping recording, frames:" << frameCount << ", duration:" << durationMs;
    if (m_isRecording)
        pauseRecording();
    if (m_systemAudioEnabled && m_systemAudio) {
        qCWarning(logRecord) << "[KelRecordVoiceTrack] 停止系统音频录制，指针:" << static_cast<void *>(m_systemAudio);
        m_systemAudio->stopRecording();
        qCWarning(logRecord) << "[KelRecordVoiceTrack] 系统音频录制已停止";
    }
    joinMicrophoneParts();
    m_isRecording = false;
    m_isPaused = false;
    qCWarning(logRecord) << "[KelRecordVoiceTrack] 调用 cleanupAudioRecorders()";
    cleanupAudioRecorders();
    qCWarning(logRecord) << "[KelRecordVoiceTrack] cleanupAudioRecorders() 完成";
    qCWarning(logRecord) << "[KelRecordVoiceTrack::stopRecording] ========== 完成 ==========";
}

void KelRecordVoiceTrack::joinMicrophoneParts()
{
    qCWarning(logRecord) << "[KelRecordVoiceTrack] 麦克风分段文件数量:" << m_microphoneParts.size();
    if (m_microphoneParts.isEmpty())
        return;
    qCWarning(logRecord) << "[KelRecordVoiceTrack] 合并麦克风分段文件到:" << m_microphonePath;
    const QString problem = mergeMicrophoneParts(m_microphoneParts, m_microphonePath, m_microphoneTimes);
    if (!problem.isEmpty())
        reportFailure(KelTrackNames::kMicrophone, problem);
    else if (m_isMicrophonePresenceUnknown && MicrophoneBackend::isSilent(m_microphonePath))
        reportFailure(KelTrackNames::kMicrophone,
                      QStringLiteral("nothing but silence was recorded, as there is no sound server"));
    m_microphoneParts.clear();
    m_microphoneTimes.clear();
    m_microphonePartIndex = 0;
    qCWarning(logRecord) << "[KelRecordVoiceTrack] 麦克风分段文件合并完成";
}

void KelRecordVoiceTrack::cleanupAudioRecorders()
{
    qCWarning(logRecord) << "[KelRecordVoiceTrack::cleanupAudioRecorders] ========== 开始 ==========";
    if (m_systemAudio) {
        qCWarning(logRecord) << "[cleanupAudioRecorders] 处理系统音频录制器，指针:"
                             << static_cast<void *>(m_systemAudio);
        qCWarning(logRecord) << "[cleanupAudioRecorders] isRecording:" << m_systemAudio->isRecording();
        if (m_systemAudio->isRecording()) {
            qCWarning(logRecord) << "[cleanupAudioRecorders] 调用 stopRecording()";
            m_systemAudio->stopRecording();
            qCWarning(logRecord) << "[cleanupAudioRecorders] stopRecording() 完成";
        }
        qCWarning(logRecord) << "[cleanupAudioRecorders] 断开信号连接";
        m_systemAudio->disconnect(this);
        qCWarning(logRecord) << "[cleanupAudioRecorders] 等待 50ms 让音频线程完全停止";
        QThread::msleep(kWindDownMs);
        qCWarning(logRecord) << "[cleanupAudioRecorders] 删除系统音频录制器";
        delete std::exchange(m_systemAudio, nullptr);
        qCWarning(logRecord) << "[cleanupAudioRecorders] 系统音频录制器已删除";
    } else {
        qCWarning(logRecord) << "[cleanupAudioRecorders] 系统音频录制器为空，跳过";
    }
    if (m_microphone) {
        qCWarning(logRecord) << "[cleanupAudioRecorders] 处理麦克风录制器，指针:" << static_cast<void *>(m_microphone);
        qCWarning(logRecord).noquote() << "[cleanupAudioRecorders] state:" << keyOf("State", m_microphone->state());
        if (m_microphone->state() == QMediaRecorder::RecordingState) {
            qCWarning(logRecord) << "[cleanupAudioRecorders] 调用 stop()";
            m_microphone->stop();
            qCWarning(logRecord) << "[cleanupAudioRecorders] stop() 完成";
        }
        qCWarning(logRecord) << "[cleanupAudioRecorders] 断开信号连接";
        m_microphone->disconnect(this);
        qCWarning(logRecord) << "[cleanupAudioRecorders] 等待 50ms 让麦克风录制器完全停止";
        QThread::msleep(kWindDownMs);
        qCWarning(logRecord) << "[cleanupAudioRecorders] 删除麦克风录制器";
        delete std::exchange(m_microphone, nullptr);
        qCWarning(logRecord) << "[cleanupAudioRecorders] 麦克风录制器已删除";
    } else {
        qCWarning(logRecord) << "[cleanupAudioRecorders] 麦克风录制器为空，跳过";
    }
    qCWarning(logRecord) << "[KelRecordVoiceTrack::cleanupAudioRecorders] ========== 完成 ==========";
}

void KelRecordVoiceTrack::onSystemAudioStateChanged(QAudioRecorder::State) {}

void KelRecordVoiceTrack::onMicrophoneStateChanged(QAudioRecorder::State) {}

void KelRecordVoiceTrack::onMicrophoneStatusChanged(QMediaRecorder::Status status)
{
    if (status == QMediaRecorder::RecordingStatus)
        m_microphoneBeginMs = monotonicMs();
}

void KelRecordVoiceTrack::onSystemAudioError(QAudioRecorder::Error error)
{
    qCWarning(logRecord).noquote() << "系统音频录制器错误:" << keyOf("Error", error);
}

void KelRecordVoiceTrack::onMicrophoneError(QAudioRecorder::Error error)
{
    qCWarning(logRecord).noquote() << "麦克风录制器错误:" << keyOf("Error", error);
    if (!m_microphone)
        return;
    qCWarning(logRecord) << "麦克风错误详情:" << m_microphone->errorString();
    reportFailure(KelTrackNames::kMicrophone, m_microphone->errorString());
}
