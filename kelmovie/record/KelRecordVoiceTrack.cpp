#include "record/KelRecordVoiceTrack.h"

#include "audio/capture/KelSystemAudioRecord.h"
#include "audio/capture/MicrophoneRecord.h"
#include "files/PrivateFile.h"
#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"
#include "recording/wav/SoundFiles.h"

#include <QDateTime>
#include <QDebug>
#include <QMetaEnum>
#include <QThread>

#include <utility>

using namespace kel;

namespace
{
constexpr unsigned long kWindDownMs = 50;

QByteArray keyOf(const char *enumerator, int value)
{
    const QMetaObject &recorder = QMediaRecorder::staticMetaObject;
    return QByteArray("QMediaRecorder::") +
           recorder.enumerator(recorder.indexOfEnumerator(enumerator)).valueToKey(value);
}
} // namespace

KelRecordVoiceTrack::KelRecordVoiceTrack(const QRect &recordArea, const QString &trackDir, QObject *parent,
                                         const CaptureDependencies &dependencies)
    : KelRecordTrack(recordArea, trackDir, parent)
    , m_dependencies(dependencies)
    , m_systemAudioPath(soundFilePath(trackDir, KelRecordingFiles::kSystemAudio, QDateTime::currentDateTime()))
    , m_microphonePath(soundFilePath(trackDir, KelRecordingFiles::kMicrophone, QDateTime::currentDateTime()))
{
    m_microphoneSettings.setCodec(QStringLiteral("audio/wav"));
    m_microphoneSettings.setSampleRate(44100);
    m_microphoneSettings.setChannelCount(2);
    m_microphoneSettings.setQuality(QMultimedia::HighQuality);
    makePrivateDirectory(trackDir);
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
}

void KelRecordVoiceTrack::noteClockChange()
{
    m_clockChangeMs = m_dependencies.nowMs();
}

/// The time noted for the current start, pause or stop; the current time if none was noted.
qint64 KelRecordVoiceTrack::takeClockChange()
{
    const qint64 noted = std::exchange(m_clockChangeMs, 0);
    return noted > 0 ? noted : m_dependencies.nowMs();
}

void KelRecordVoiceTrack::setUpRecorders()
{
    if (m_systemAudioEnabled && !m_systemAudio) {
        m_systemAudio = new KelSystemAudioRecord(
            m_systemAudioPath, [this](const QString &problem) { reportFailure(KelTrackNames::kSystemAudio, problem); },
            this, m_dependencies);
    }
    if (m_microphoneEnabled && !m_microphone) {
        m_microphone = new MicrophoneRecord(
            m_microphoneSettings, m_microphonePath,
            [this](const QString &) { onMicrophoneError(QAudioRecorder::ResourceError); }, this, m_dependencies);
    }
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
    if (m_microphoneEnabled && m_microphone) {
        m_microphone->start(startMs);
        checkMicrophone("启动麦克风录制时发生异常");
    }
}

void KelRecordVoiceTrack::pauseRecording()
{
    if (!m_isRecording)
        return;
    const qint64 endMs = takeClockChange();
    if (m_systemAudioEnabled && m_systemAudio && !m_isPaused)
        m_systemAudio->pause(endMs);
    if (m_microphone && m_microphone->isRecording())
        m_microphone->pause(endMs);
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
    if (m_microphoneEnabled && m_microphone) {
        m_microphone->resume(atMs);
        checkMicrophone("恢复麦克风录制时发生异常");
    }
    m_isRecording = true;
    m_isPaused = false;
}

/// Does without the microphone if its recording could not begin.
void KelRecordVoiceTrack::checkMicrophone(const char *failureText)
{
    if (m_microphone->isRecording())
        return;
    qCCritical(logRecord) << failureText;
    m_microphoneEnabled = false;
}

void KelRecordVoiceTrack::stopRecording(qint64 frameCount, qint64 durationMs)
{
    qCInfo(logRecord) << "[VoiceTrack] Stopping recording, frames:" << frameCount << ", duration:" << durationMs;
    if (m_isRecording)
        pauseRecording();
    if (m_microphone)
        m_microphone->prepareStop(); // ends while system audio is stopped
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
    const int parts = m_microphone ? m_microphone->partCount() : 0;
    qCWarning(logRecord) << "[KelRecordVoiceTrack] 麦克风分段文件数量:" << parts;
    if (parts == 0)
        return;
    qCWarning(logRecord) << "[KelRecordVoiceTrack] 合并麦克风分段文件到:" << m_microphonePath;
    m_microphone->stopRecording();
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
        qCWarning(logRecord).noquote() << "[cleanupAudioRecorders] state:"
                                       << keyOf("State", m_microphone->isRecording() ? QAudioRecorder::RecordingState
                                                                                     : QAudioRecorder::StoppedState);
        if (m_microphone->isRecording()) {
            qCWarning(logRecord) << "[cleanupAudioRecorders] 调用 stop()";
            m_microphone->stopRecording();
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
