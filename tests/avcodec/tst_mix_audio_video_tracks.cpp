#include "avcodec/DecodedVideo.h"
#include "avcodec/audio/MixAudioVideoTracks.h"
#include "avcodec/mp4/h264Encoder.h"
#include "support/FileSizeLimit.h"
#include "support/Files.h"
#include "support/HostProgram.h"
#include "support/Sound.h"
#include "support/TestTable.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>

namespace
{

/// Standard output of a program.
QString outputOf(const QString &program, const QStringList &arguments)
{
    return QString::fromUtf8(HostProgram::run(program, arguments).output).simplified();
}

QString videoHashOf(const QString &path)
{
    return outputOf("ffmpeg", {"-v", "error", "-i", path, "-map", "0:v", "-c", "copy", "-bsf:v", "h264_mp4toannexb",
                               "-f", "md5", "-"});
}

/// A property of each stream.
QString streams(const QString &path, const QString &entry)
{
    return outputOf("ffprobe", {"-v", "error", "-show_entries", "stream=" + entry, "-of", "csv=p=0", path});
}

} // namespace

class MixAudioVideoTracksTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void mixesTones();
    void staysInSync_data();
    void staysInSync();
    void containers_data();
    void containers();
    void otherEncoders_data();
    void otherEncoders();
    void keepsLevelOfSingleSource();
    void limitsLoudSourcesWithoutDistortion();
    void stillLastsAsLongAsAudio();
    void failures_data();
    void failures();
    void toleratesDamagedSources_data();
    void toleratesDamagedSources();
    void cancel();
    void fullDisk();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    QString videoOf(int frames)
    {
        const QString file = m_shared.filePath(QString("video%1.mp4").arg(frames));
        if (QFile::exists(file))
            return file;
        h264Encoder encoder({QSize(64, 48), QImage::Format_RGB32, file, 25, 50});
        QImage image(64, 48, QImage::Format_RGB32);
        for (int i = 0; i < frames; ++i) {
            image.fill(QColor(i * 37 % 256, i % 256, 90));
            encoder.addFrame(quint64(i), image);
        }
        return encoder.close() ? file : QString();
    }
    AudioTrack track(const QString &name, const Sound &sound, bool isFloat = true) const
    {
        AudioTrack track;
        track.path = path(name);
        if (!sound.save(track.path, isFloat))
            qFatal("cannot write a sound");
        return track;
    }
    bool mix(const QList<AudioTrack> &tracks, const QString &output, const MixProgress &progress = {})
    {
        return MixAudioVideoTracks(videoOf(50), tracks, path(output), progress, &m_error);
    }
    QStringList files() const
    {
        return QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QTemporaryDir m_shared;
    QString m_videoHash; // of videoOf(50)
    std::unique_ptr<QTemporaryDir> m_dir;
    MixError m_error;
};

void MixAudioVideoTracksTest::initTestCase()
{
    m_videoHash = videoHashOf(videoOf(50));
    QVERIFY(!m_videoHash.isEmpty());
}

void MixAudioVideoTracksTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
}

void MixAudioVideoTracksTest::mixesTones()
{
    // Different formats and rates; one is longer than the video, one much shorter.
    const AudioTrack system = track("a.wav", Sound::make(3.0, Sound::tone(440, 0.3)));
    const AudioTrack microphone = track("b.wav", Sound::make(1.5, Sound::tone(1000, 0.25), 44'100, 1), false);
    QVector<double> shares;
    const auto note = [&](double share) {
        shares.append(share);
        return true;
    };
    QVERIFY2(mix({system, microphone}, "out.mp4", note), qPrintable(m_error.text));
    QCOMPARE(videoHashOf(path("out.mp4")), m_videoHash);
    QVERIFY(mp4Boxes(path("out.mp4")).indexOf("moov") < mp4Boxes(path("out.mp4")).indexOf("mdat"));

    const Sound sound = Sound::decode(path("out.mp4"));
    QVERIFY2(std::fabs(sound.seconds() - 2.0) < 0.022, qPrintable(QString::number(sound.seconds())));
    for (int channel : {0, 1}) {
        QVERIFY(std::fabs(sound.level(440, 0.2, 1.4, channel) - 0.3) < 0.01);
        QVERIFY(std::fabs(sound.level(1000, 0.2, 1.4, channel) - 0.25) < 0.01);
        QVERIFY(std::fabs(sound.level(440, 1.6, 1.95, channel) - 0.3) < 0.01);
        QVERIFY(sound.level(1000, 1.6, 1.95, channel) < 0.01);
        QVERIFY(sound.level(700, 0.2, 1.4, channel) < 0.001);
    }
    QCOMPARE(streams(path("out.mp4"), "duration"), QString("2.000000 2.000000"));
    QVERIFY(std::is_sorted(shares.cbegin(), shares.cend()));
    QVERIFY(shares.size() > 50 && shares.first() < 0.1 && shares.last() > 0.99 && shares.last() <= 1.0);
    QCOMPARE(files(), (QStringList{"a.wav", "b.wav", "out.mp4"}));
}

void MixAudioVideoTracksTest::staysInSync_data()
{
    const TestTable<double, double, double, double, int> row("speed", "start", "end", "offset", "rate");
    for (double speed : {0.5, 1.0, 2.0}) {
        const QByteArray name = "speed " + QByteArray::number(speed);
        row(name, speed, -1.0, -1.0, 0.0, 48'000);
        row(name + ", part", speed, 601.0, 1'150.0, 0.0, 48'000);
        row(name + ", part, 44100", speed, 650.0, 1'150.0, 0.0, 44'100);
    }
    row("later", 1.0, 650.0, 1'150.0, 300.0, 48'000);
    row("earlier", 1.0, -1.0, -1.0, -300.0, 48'000);
    row("odd rate", 1.0, 650.0, 1'150.0, 0.0, 11'025);
}

void MixAudioVideoTracksTest::staysInSync()
{
    QFETCH(double, speed);
    QFETCH(double, start);
    QFETCH(double, end);
    QFETCH(double, offset);
    QFETCH(int, rate);

    // A tone from 0.7 s to 1.1 s of recording time, in a file that plays at another speed.
    const auto tone = Sound::tone(2'000, 0.5, 0.7 / speed, 1.1 / speed);
    AudioTrack part = track("a.wav", Sound::make(2.0 / speed, tone, rate));
    part.startMs = start;
    part.endMs = end;
    part.offsetMs = offset;
    part.speed = speed;
    QVERIFY2(mix({part}, "out.wav"), qPrintable(m_error.text));

    const Sound sound = Sound::decode(path("out.wav"));
    const double first = (0.7 - std::max(start, 0.0) / 1000) / speed + offset / 1000;
    const double last = std::min(first + 0.4 / speed, 2.0); // end of the video
    const QString found =
        QString("%1 to %2 instead of %3 to %4").arg(sound.onset(0.25)).arg(sound.end(0.25)).arg(first).arg(last);
    QVERIFY2(std::fabs(sound.onset(0.25) - first) < 0.0003 && std::fabs(sound.end(0.25) - last) < 0.0003,
             qPrintable(found));
    QCOMPARE(sound.samples.size(), size_t(2 * 96'000));
}

void MixAudioVideoTracksTest::containers_data()
{
    const TestTable<QString, QString> row("name", "codecs");
    row("mp4", "out.mp4", "h264 aac");
    row("m4v", "out.m4v", "h264 aac");
    row("mov", "out.MOV", "h264 aac");
    row("mkv", "out.mkv", "h264 aac");
    row("m4a", "out.m4a", "aac");
    row("mka", "out.mka", "aac");
    row("aac", "out.aac", "aac");
    row("wav", "out.wav", "pcm_s16le");
    row("flac", QString::fromUtf8("声 音.flac"), "flac");
}

void MixAudioVideoTracksTest::containers()
{
    QFETCH(QString, name);
    QFETCH(QString, codecs);

    const AudioTrack a = track("a.wav", Sound::make(2.0, Sound::tone(440, 0.4, 0.5)));
    QVERIFY2(mix({a}, name), qPrintable(m_error.text));
    const QStringList found = streams(path(name), "codec_name,start_time").split(' ');
    QCOMPARE(QStringList(found).replaceInStrings(QRegularExpression(",.*"), ""), codecs.split(' '));
    const Sound sound = Sound::decode(path(name));
    const double level = sound.level(440, 0.6, 1.7);
    QVERIFY2(std::fabs(level - 0.4) < 0.02, qPrintable(QString::number(level)));
    // Without negative timestamps, the video starts later by the priming of the audio encoder; alone, it is heard.
    const bool isPrimed = QStringList{"aac", "mka", "mp3"}.contains(name.section('.', 1));
    const double start = 0.5 + (isPrimed ? 0.02 : found.first().section(',', 1).toDouble());
    QVERIFY2(std::fabs(sound.onset(0.2) - start) < (isPrimed ? 0.03 : 0.003),
             qPrintable(QString::number(sound.onset(0.2))));
    if (codecs.startsWith("h264")) {
        QVERIFY2(mix({}, name), qPrintable(m_error.text)); // a silent video
        QCOMPARE(streams(path(name), "codec_name"), QString("h264"));
        QCOMPARE(videoHashOf(path(name)), m_videoHash);
    }
}

/// Encoders for which FFmpeg needs external libraries.
void MixAudioVideoTracksTest::otherEncoders_data()
{
    const TestTable<QString, QString> row("name", "codecs");
    row("mp3", "out.mp3", "mp3");
    row("ogg", "out.ogg", "vorbis");
    row("opus", "out.opus", "opus");
}

void MixAudioVideoTracksTest::otherEncoders()
{
    containers();
}

void MixAudioVideoTracksTest::keepsLevelOfSingleSource()
{
    for (int channels : {1, 2}) {
        const Sound loud = Sound::make(2.0, Sound::tone(440, 1.0), 48'000, channels);
        QVERIFY2(mix({track("a.wav", loud, false)}, "out.wav"), qPrintable(m_error.text));
        const Sound mixed = Sound::decode(path("out.wav"));
        for (size_t frame = 0; frame < 96'000; ++frame) {
            const float expected = float(std::lround(double(loud.samples[frame * size_t(channels)]) * 32767)) / 32768;
            QCOMPARE(mixed.samples[frame * 2], expected);
            QCOMPARE(mixed.samples[frame * 2 + 1], expected);
        }
    }
}

void MixAudioVideoTracksTest::limitsLoudSourcesWithoutDistortion()
{
    const AudioTrack a = track("a.wav", Sound::make(2.0, Sound::tone(440, 1.0)));
    const AudioTrack b = track("b.wav", Sound::make(2.0, Sound::tone(1'500, 1.0, 0.5, 1.5)));
    QVERIFY2(mix({a, b}, "out.wav"), qPrintable(m_error.text));
    const Sound sound = Sound::decode(path("out.wav"));
    QVERIFY(sound.peak() <= 1.0);
    QVERIFY(std::fabs(sound.level(440, 0.1, 0.49) - 1.0) < 0.001); // alone
    const double low = sound.level(440, 0.6, 1.4);
    const double high = sound.level(1'500, 0.6, 1.4);
    QVERIFY2(std::fabs(low - high) < 0.01 && low > 0.49, qPrintable(QString("%1, %2").arg(low).arg(high)));
    // Neither harmonics nor intermodulation products of clipping.
    for (double hertz : {880.0, 1'320.0, 3'000.0, 4'500.0, 1'060.0, 1'940.0, 620.0, 2'560.0, 2'380.0, 3'440.0}) {
        const double level = sound.level(hertz, 0.6, 1.4);
        QVERIFY2(level < 0.003, qPrintable(QString("%1 Hz: %2").arg(hertz).arg(level)));
    }
    // The level rises again, but too slowly to be noticed.
    QVERIFY2(sound.level(440, 1.51, 1.53) < 0.6, qPrintable(QString::number(sound.level(440, 1.51, 1.53))));
    QVERIFY(std::fabs(sound.level(440, 1.95, 2.0) - 0.94) < 0.02);
}

void MixAudioVideoTracksTest::stillLastsAsLongAsAudio()
{
    QRandomGenerator random(1);
    AudioTrack part = track("a.wav", Sound::make(4.0, [&](double) { return random.generateDouble() - 0.5; }));
    part.startMs = 1'000;
    part.endMs = 3'500;
    for (const char *name : {"out.wav", "out.m4a", "out.mp4"}) {
        QVERIFY2(MixAudioVideoTracks(videoOf(1), {part}, path(name), {}, &m_error), qPrintable(m_error.text));
        const double seconds = Sound::decode(path(name)).seconds();
        QVERIFY2(std::fabs(seconds - 2.5) < 0.022, qPrintable(QString::number(seconds)));
    }
    QVERIFY2(QFileInfo(path("out.m4a")).size() > 0.9 * 2.5 * 192'000 / 8, "of poor quality");
    part.startMs = 3'500;
    QVERIFY2(MixAudioVideoTracks(videoOf(1), {part}, path("out.mp4"), {}, &m_error), qPrintable(m_error.text));
    QCOMPARE(streams(path("out.mp4"), "codec_name"), QString("h264 aac"));
    QVERIFY(!MixAudioVideoTracks(videoOf(1), {part}, path("out.wav"), {}, &m_error));
    QCOMPARE(m_error.text, QString("There is no sound in the chosen range"));
}

void MixAudioVideoTracksTest::failures_data()
{
    const TestTable<QString, QString, double, QString, QString> row("video", "sound", "speed", "output", "error");
    const QString good("good.wav");
    row("no video", "none.mp4", good, 1.0, "old.mp4", "Cannot read video");
    row("sound as video", good, good, 1.0, "old.mp4", "Cannot read video");
    row("no sound file", "", "none.wav", 1.0, "old.mp4", "Cannot read sound");
    row("directory as sound", "", ".", 1.0, "old.mp4", "Cannot read sound");
    row("video as sound", "", "video.mp4", 1.0, "old.mp4", "Cannot read sound");
    row("playlist as sound", "", "list.wav", 1.0, "old.mp4", "Cannot read sound");
    row("speed 0", "", good, 0.0, "old.mp4", "Cannot read sound");
    row("no type", "", good, 1.0, "old", "No sound can be written to a file of type \"\"");
    row("other type", "", good, 1.0, "old.gif", "No sound can be written to a file of type \"gif\"");
    row("nowhere", "", good, 1.0, "none/out.mp4", "Cannot write");
    row("onto a directory", "", good, 1.0, "dir.mp4", "Not a regular file");
}

void MixAudioVideoTracksTest::failures()
{
    QFETCH(QString, video);
    QFETCH(QString, sound);
    QFETCH(double, speed);
    QFETCH(QString, output);
    QFETCH(QString, error);

    track("good.wav", Sound::make(0.5, Sound::tone(440, 0.4)));
    QVERIFY(QFile::copy(videoOf(50), path("video.mp4")));
    QVERIFY(QDir(m_dir->path()).mkdir("dir.mp4"));
    for (const char *name : {"old.mp4", "old", "old.gif", "list.wav"})
        writeFile(path(name), "#EXTM3U\nfile:///etc/passwd\n");
    const QStringList before = files();
    AudioTrack part;
    part.path = path(sound);
    part.speed = speed;
    QVERIFY(!MixAudioVideoTracks(path(video.isEmpty() ? "video.mp4" : video), {part}, path(output), {}, &m_error));
    QVERIFY2(m_error.text.startsWith(error), qPrintable(m_error.text));
    QCOMPARE(m_error.isOutput, error == "Cannot write" || error == "Not a regular file");
    QCOMPARE(files(), before);
    QCOMPARE(QFileInfo(path("old.mp4")).size(), 27);
}

void MixAudioVideoTracksTest::toleratesDamagedSources_data()
{
    const TestTable<int, QByteArray, bool> row("offset", "bytes", "isHeard"); // the damaged track itself
    row("unfinished header", 40, QByteArray(4, '\0'), true);
    row("larger than the file", 40, QByteArray("\0\0\0\x70", 4), true);
    row("4 GiB", 40, QByteArray(4, '\xff'), true);
    row("no channels", 22, QByteArray(2, '\0'), false);
    row("65535 channels", 22, QByteArray(2, '\xff'), false);
    row("no rate", 24, QByteArray(4, '\0'), false);
    row("2 GHz", 24, QByteArray("\0\0\0\x70", 4), false);
    row("samples are NaN", 44'000, QByteArray(4'000, '\xff'), true);
    row("header only", -44, QByteArray(), false);
    row("garbage", 0, QByteArray(100'000, 'x'), false);
    row("empty", -0, QByteArray(), false);
}

void MixAudioVideoTracksTest::toleratesDamagedSources()
{
    QFETCH(int, offset);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isHeard);

    const AudioTrack good = track("a.wav", Sound::make(2.0, Sound::tone(440, 0.4)));
    const AudioTrack bad = track("b.wav", Sound::make(2.0, Sound::tone(1'000, 0.4)));
    QFile file(bad.path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    if (bytes.isEmpty())
        file.resize(-offset);
    else
        QVERIFY(file.seek(offset) && file.write(bytes) == bytes.size());
    file.close();
    QVERIFY2(mix({bad, good}, "out.wav"), qPrintable(m_error.text));
    const Sound sound = Sound::decode(path("out.wav"));
    QVERIFY(std::fabs(sound.level(440, 0.5, 1.9) - 0.4) < 0.02);
    const double level = sound.level(1'000, 0.5, 1.9);
    QVERIFY2(std::fabs(level - (isHeard ? 0.4 : 0.0)) < 0.02, qPrintable(QString::number(level)));
}

void MixAudioVideoTracksTest::cancel()
{
    const AudioTrack a = track("a.wav", Sound::make(2.0, Sound::tone(440, 0.4)));
    for (const double share : {0.0, 0.5, 1.0}) { // at 1, the index moves to the front
        int callsAfter = 0;
        QVERIFY(!mix({a}, "out.mp4", [&](double done) { return done < share || callsAfter++ < (share >= 1.0); }));
        QCOMPARE(m_error.text, QString("Cancelled"));
        QVERIFY(callsAfter < 20);
        QCOMPARE(files(), QStringList{"a.wav"});
    }
}

void MixAudioVideoTracksTest::fullDisk()
{
    const AudioTrack a = track("a.wav", Sound::make(2.0, Sound::tone(440, 0.4)));
    videoOf(50);
    for (const char *name : {"out.mp4", "out.mkv", "out.wav"}) {
        QVERIFY2(mix({a}, name), qPrintable(m_error.text));
        const qint64 size = QFileInfo(path(name)).size();
        QVERIFY(QFile::remove(path(name)));
        for (const qint64 room : {qint64(20'000), size - 1}) { // at the end only what is buffered is left to be written
            const FileSizeLimit limit(room);
            QVERIFY(!mix({a}, name));
            QVERIFY(m_error.isOutput);
            const QString expected = "^Cannot write " + QRegularExpression::escape(path(name)) + ": ";
            QVERIFY2(m_error.text.contains(QRegularExpression(expected + FileSizeLimit::errorPattern() + '$')),
                     qPrintable(m_error.text));
        }
    }
    QCOMPARE(files(), QStringList{"a.wav"});
}

QTEST_GUILESS_MAIN(MixAudioVideoTracksTest)
#include "tst_mix_audio_video_tracks.moc"
