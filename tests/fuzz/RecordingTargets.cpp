// A whole recording: its files influence each other once it is played.

#include "FuzzTarget.h"

#include "audio/output/AudioSink.h"
#include "playback/KelPlaybackTrackManager.h"
#include "playback/PlaybackInternals.h"
#include "playback/tracks/KelPlaybackDependencies.h"

#include <QAudioFormat>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>

namespace
{

/// The settings with which the recording is played.
constexpr const char *kSettings = "keldock.ini";

/// Writes the files of a recording that the input contains, see pack-recording: each follows a line "=== PATH".
QString unpack(const QByteArray &input)
{
    static const QRegularExpression safePath("^(\\w[\\w.-]*/){0,2}\\w[\\w.-]*$");
    const QString dir = scratchPath("recording");
    QDir(dir).removeRecursively();
    const QByteArray text = '\n' + input;
    const QByteArray title = "\n=== ";
    for (int at = text.indexOf(title); at >= 0; at = text.indexOf(title, at + 1)) {
        const int path = at + title.size();
        const int content = text.indexOf('\n', path) + 1;
        const int next = text.indexOf(title, path);
        const QString name = QString::fromLatin1(text.mid(path, content - 1 - path));
        if (!safePath.match(name).hasMatch())
            continue;
        QFile file(scratchPath("recording/" + name));
        if (file.open(QIODevice::WriteOnly)) // a file may be named like a directory
            file.write(text.mid(content, next < 0 ? -1 : next - content));
    }
    return dir;
}

/// Takes one buffer of sound.
class OneBufferSink : public kel::AudioSink
{
public:
    bool start() override { return true; }
    void stop() override {}
    QAudio::Error error() const override { return QAudio::NoError; }
    int bytesFree() const override { return kSize - m_buffered; }
    int bytesBuffered() const override { return m_buffered; }
    qint64 write(const char *, qint64 count) override
    {
        m_buffered += int(count);
        return count;
    }
    void setVolume(double) override {}

private:
    static constexpr int kSize = 1 << 16;
    int m_buffered = 0;
};

void paint(KelPlaybackTrackManager &manager)
{
    static QImage canvas(320, 240, QImage::Format_RGB32);
    QPainter painter(&canvas);
    manager.paint(&painter);
}

void recording(const QByteArray &input)
{
    KelPlaybackDependencies dependencies = KelPlaybackDependencies::real();
    qint64 now = 0;
    dependencies.nowMs = [&now] { return now += 10; };
    dependencies.createAudioSink = [](const QAudioFormat &) { return std::make_unique<OneBufferSink>(); };
    const KelPlaybackRules rules = input.size() % 2 == 0 ? KelPlaybackRules() : KelPlaybackRules::recommended();
    const QString dir = unpack(input);
    QFile settings(dir + '/' + kSettings);
    applySettings(settings.open(QIODevice::ReadOnly) ? settings.readAll() : QByteArray());
    const auto manager = kel::PlaybackInternals::load(dir, dependencies, rules);
    const int count = manager->totalFrames();
    expect(count >= 1 && manager->fps() >= 1, "a recording has frames");
    expect(manager->isValidRecording() == manager->errorString().isEmpty(), "what cannot be shown has a reason");
    manager->trackNames();
    manager->durationMs();
    manager->setFrameAsPlayed(count / 2);
    for (const int frame : {0, count / 2, count - 1}) {
        manager->seek(frame);
        paint(*manager);
    }
    manager->setSpeed(2.0);
    manager->play();
    manager->seek(count / 3, true);
    paint(*manager);
    manager->stop();
}

} // namespace

std::vector<FuzzTarget> recordingTargets()
{
    return {{"recording", recording}};
}
