#include "selftest/RecordingCheck.h"

#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QEventLoop>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QScreen>
#include <QTimer>

namespace kel
{

namespace
{

constexpr int kFps = 25;
constexpr int kRecordMs = 500;
constexpr int kMaxWidth = 320;
constexpr int kMaxHeight = 240;

} // namespace

QString RecordingCheck::run()
{
    const QString problem = record();
    return problem.isEmpty() ? playBack() : problem;
}

QString RecordingCheck::record()
{
    const QScreen *const screen = QGuiApplication::primaryScreen();
    if (!screen)
        return QStringLiteral("there is no screen");
    const QSize size = screen->geometry().size().boundedTo({kMaxWidth, kMaxHeight});
    m_area = QRect(screen->geometry().topLeft(), size);
    KelMultiTrackRecorder recorder;
    KelMultiTrackRecorder::RecordConfig config; // screen and mouse, never keys
    config.outputDir = m_directory;
    config.fps = kFps;
    recorder.setRecordConfig(config);
    recorder.setRecordArea(m_area);
    QString problem;
    QEventLoop loop;
    QObject::connect(&recorder, &KelMultiTrackRecorder::recordingError, &loop, [&](const QString &error) {
        problem = error;
        loop.quit();
    });
    bool isPrepared = false;
    QObject::connect(&recorder, &KelMultiTrackRecorder::recordingPrepared, &loop, [&] {
        isPrepared = true;
        loop.quit();
    });
    QObject::connect(&recorder, &KelMultiTrackRecorder::recordingDeclined, &loop, [&](const QString &reason) {
        problem = reason;
        loop.quit();
    });
    recorder.prepareRecording();
    if (!isPrepared && problem.isEmpty())
        loop.exec();
    if (!isPrepared)
        return problem;
    if (!recorder.startRecording())
        return recorder.lastError();
    QTimer::singleShot(kRecordMs, &loop, &QEventLoop::quit);
    loop.exec();
    recorder.stopRecording();
    return problem;
}

QString RecordingCheck::playBack()
{
    KelPlaybackTrackManager playback(m_directory, false);
    if (!playback.isValidRecording())
        return QStringLiteral("the recording cannot be loaded: ") + playback.errorString();
    if (playback.totalFrames() < 2)
        return QStringLiteral("only %1 frames were recorded").arg(playback.totalFrames());
    if (!playback.trackNames().contains(QStringLiteral("MouseTrack")))
        return QStringLiteral("the mouse was not recorded");
    QImage frame(playback.frameSize(), QImage::Format_ARGB32_Premultiplied);
    frame.fill(Qt::transparent);
    playback.setFrameAsPlayed(playback.totalFrames() - 1);
    QPainter painter(&frame);
    playback.paint(&painter);
    painter.end();
    if (qAlpha(frame.pixel(frame.rect().center())) != 255)
        return QStringLiteral("the recorded video cannot be decoded");
    m_finding = QStringLiteral("%1 frames of %2x%3 pixels, with the mouse, in %4 ms")
                    .arg(playback.totalFrames())
                    .arg(frame.width())
                    .arg(frame.height())
                    .arg(playback.durationMs());
    return {};
}

} // namespace kel
