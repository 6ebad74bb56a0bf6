#include "kelmovie/support/ScriptedAudioSink.h"
#include "kelmovie/support/SoundFile.h"
#include "support/LogCapture.h"
#include "support/Sound.h"
#include "support/TestTable.h"

#include "audio/output/AudioGain.h"
#include "audio/output/KelAmplifiedAudioPlayer.h"
#include "recording/wav/WavChunks.h"
#include "recording/wav/WavHeader.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

using namespace kel;

using SoundFile::littleEndian;

namespace
{

constexpr int kRate = 4000;

QByteArray withSizes(QByteArray file, quint32 riffSize, quint32 dataSize)
{
    return file.replace(4, 4, littleEndian({riffSize})).replace(40, 4, littleEndian({dataSize}));
}

QByteArray chunk(const char *id, quint32 size, const QByteArray &body = QByteArray())
{
    return id + littleEndian({size}) + body;
}

QByteArray format(quint16 tag, quint16 channels, quint32 rate, quint16 bits)
{
    WavHeader header = WavHeader::pcm(rate, channels, bits);
    header.formatTag = tag;
    return header.toBytes().mid(20, 16);
}

} // namespace

class AmplifiedPlayerTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void loads_data();
    void loads();
    void seeksInHours();
    void amplifies_data();
    void amplifies();
    void changesState();
    void followsRate();
    void keepsPitch();
    void playsShortEndings();
    void mutes();

private:
    QString write(const QByteArray &content)
    {
        writeFile(dir.filePath("sound.wav"), content);
        return dir.filePath("sound.wav");
    }
    std::unique_ptr<KelAmplifiedAudioPlayer> load(const QByteArray &content)
    {
        auto player = std::make_unique<KelAmplifiedAudioPlayer>(scriptedSinks(script));
        if (!player->setSource(write(content)))
            qFatal("%s", qPrintable(player->errorString()));
        return player;
    }

    QTemporaryDir dir;
    std::shared_ptr<SoundScript> script;
    qint64 nowMs = 0;
};

void AmplifiedPlayerTest::init()
{
    script = std::make_shared<SoundScript>();
    script->nowMs = [this] { return nowMs; };
}

void AmplifiedPlayerTest::loads_data()
{
    const TestTable<QByteArray, QString, qint64> row("content", "error", "durationMs");

    const QByteArray second(8000, 'x'); // of 4000 frames
    const QByteArray good = SoundFile::wav(4000, 16, second);
    const QByteArray riff = good.left(12);
    const QByteArray fmt = chunk("fmt ", 16, format(1, 1, 4000, 16));
    const QByteArray data = chunk("data", 8000, second);
    const QString noChunk = "Invalid WAV file: missing fmt or data chunk";
    const quint32 most = std::numeric_limits<quint32>::max();
    const auto formatted = [&](quint16 tag, quint16 channels, quint32 rate, quint16 bits) {
        return riff + chunk("fmt ", 16, format(tag, channels, rate, bits)) + data;
    };

    row("plain", good, "", 1000);
    row("chunks around", riff + chunk("LIST", 3, "abc") + data + chunk("junk", 0) + fmt, "", 1000);
    row("long fmt", riff + chunk("fmt ", 40, format(65534, 1, 4000, 16) + QByteArray(24, 'g')) + data, "", 1000);
    row("float with a wrong number of bits", formatted(3, 1, 1000, 64), "", 2000);
    row("8 bits, 2 channels", formatted(1, 2, 1000, 8), "", 4000);
    row("no samples", SoundFile::wav(4000, 16, {}), "", 0);
    row("never completed", withSizes(good, 0, 0), "", 1000);
    row("states too much", withSizes(good, 36, 0x7fff0000), "", 1000);
    row("4 GiB and more", withSizes(good, most, most), "", 1000);

    row("empty", "", "Invalid WAV file: RIFF header not found", 0);
    row("cut in the header", good.left(11), "Invalid WAV file: RIFF header not found", 0);
    row("no data", riff + fmt, noChunk, 0);
    row("odd sizes are not padded", riff + chunk("LIST", 3, "abcd") + fmt + data, noChunk, 0);
    row("chunk past the end", riff + chunk("LIST", most) + fmt + data, noChunk, 0);
    row("fmt past the end", riff + chunk("fmt ", most, format(1, 1, 4000, 16)) + data, noChunk, 0);
    row("more chunks than are read", riff + chunk("junk", 0).repeated(WavChunks::kMaxChunks) + fmt + data, noChunk, 0);
    row("small fmt", riff + chunk("fmt ", 15, format(1, 1, 4000, 16)) + data, "Invalid WAV file: fmt chunk too small",
        0);
    row("24 bits", formatted(1, 1, 4000, 24), "Unsupported bits per sample: 24", 0);
    row("compressed", formatted(85, 1, 4000, 16), "Unsupported audio format: 85", 0);
    row("no channels", formatted(1, 0, 4000, 16), "Invalid WAV file: 0 channels at 4000 Hz", 0);
    row("no rate", formatted(1, 1, 0, 16), "Invalid WAV file: 1 channels at 0 Hz", 0);
    row("invalid rate", formatted(3, 1, most, 16), "Invalid WAV file: 1 channels at 4294967295 Hz", 0);
}

void AmplifiedPlayerTest::loads()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, error);
    QFETCH(qint64, durationMs);

    KelAmplifiedAudioPlayer player(scriptedSinks(script));
    const QSignalSpy durations(&player, &KelAmplifiedAudioPlayer::durationChanged);
    const QSignalSpy errors(&player, &KelAmplifiedAudioPlayer::errorOccurred);
    if (!error.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, qPrintable("[KelAmplifiedAudioPlayer] " + error));
    QCOMPARE(player.setSource(write(content)), error.isEmpty());
    QCOMPARE(player.errorString(), error);
    QCOMPARE(errors.size(), error.isEmpty() ? 0 : 1);
    QCOMPARE(durations.size(), error.isEmpty() ? 1 : 0);
    QCOMPARE(player.duration(), durationMs);
    LogCapture log;
    player.play();
    QCOMPARE(player.isPlaying(), error.isEmpty());
    QVERIFY(!player.setSource(""));
    QVERIFY(!player.setSource("/no/such.wav"));
    const QString prefix = "W [KelAmplifiedAudioPlayer] ";
    QStringList expected{prefix + "File path is empty", prefix + "File does not exist: /no/such.wav"};
    if (!error.isEmpty())
        expected.prepend(prefix + "No audio source set");
    QCOMPARE(log.take(), expected);
}

void AmplifiedPlayerTest::seeksInHours()
{
    const qint64 hours = 3;
    const quint32 rate = 48'000;
    const qint64 bytes = hours * 3600 * rate * 4; // 2 GiB, almost entirely sparse
    WavHeader header = WavHeader::pcm(rate, 1, 32);
    header.setDataSize(bytes);
    QFile file(write(header.toBytes()));
    QVERIFY(file.open(QIODevice::ReadWrite) && file.resize(WavHeader::kSize + bytes));
    for (const qint64 ms : {10'799'000, 5'400'000, 1}) {
        const qint64 frame = ms * rate / 1000;
        const QByteArray sample = littleEndian({quint32(frame)});
        QVERIFY(file.seek(WavHeader::kSize + frame * 4) && file.write(sample) == sample.size());
    }
    QVERIFY(file.flush());

    KelAmplifiedAudioPlayer player(scriptedSinks(script));
    QVERIFY(player.setSource(file.fileName()));
    QCOMPARE(player.duration(), hours * 3'600'000);
    player.play();
    for (const qint64 ms : {10'799'000, 5'400'000, 1}) {
        player.seek(ms);
        QCOMPARE(player.position(), ms);
        QCOMPARE(qint64(SoundFile::numberAt(script->last->written(), 0)), ms * rate / 1000);
    }
    player.seek(-5);
    QCOMPARE(player.position(), qint64(0));
}

void AmplifiedPlayerTest::amplifies_data()
{
    const TestTable<double, bool, QByteArray, QByteArray> row("gain", "isFloat", "in", "out");

    const float clipped = 0.95F + 0.05F * std::tanh((1.6F - 0.95F) / 0.05F);
    const float barely = 0.95F + 0.05F * std::tanh((0.96F - 0.95F) / 0.05F);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    row("unchanged", 1.0, false, littleEndian<qint16>({-32768, -1, 32767}), littleEndian<qint16>({-32768, -1, 32767}));
    row("softer", 0.5, false, littleEndian<qint16>({-32768, -3, 3, 32767}),
        littleEndian<qint16>({-16384, -1, 1, 16383}));
    row("louder", 2.0, false, littleEndian<qint16>({-1000, 15'000}), littleEndian<qint16>({-2000, 30'000}));
    row("maximum", 5.0, false, littleEndian<qint16>({-32768, 32767, 0}), littleEndian<qint16>({-32768, 32767, 0}));
    row("above the maximum", 1e9, false, littleEndian<qint16>({1000}), littleEndian<qint16>({5000}));
    row("negative", -1.0, false, littleEndian<qint16>({1000}), littleEndian<qint16>({0}));
    row("float", 2.0, true, littleEndian<float>({0.25F, -0.475F, 0.8F, -0.8F, 0.48F}),
        littleEndian<float>({0.5F, -0.95F, clipped, -clipped, barely}));
    row("float beyond full scale", 0.5, true, littleEndian<float>({3.0F, -3.0F, nan}),
        littleEndian<float>({1.0F, -1.0F, 0.0F}));
}

void AmplifiedPlayerTest::amplifies()
{
    QFETCH(double, gain);
    QFETCH(bool, isFloat);
    QFETCH(QByteArray, in);
    QFETCH(QByteArray, out);

    QAudioFormat format;
    format.setCodec("audio/pcm");
    format.setSampleRate(kRate);
    format.setChannelCount(1);
    format.setSampleSize(isFloat ? 32 : 16);
    format.setSampleType(isFloat ? QAudioFormat::Float : QAudioFormat::SignedInt);
    AudioGain amplifier;
    amplifier.setTarget(gain);
    amplifier.setTarget(std::numeric_limits<double>::quiet_NaN());
    amplifier.jumpToTarget();
    amplifier.apply(format, &in);
    float peak = 0;
    const int size = isFloat ? 4 : 2;
    for (int i = 0; i < in.size(); i += size) {
        const auto value = [&](const QByteArray &bytes) {
            return isFloat ? qFromLittleEndian<float>(bytes.constData() + i)
                           : float(qFromLittleEndian<qint16>(bytes.constData() + i)) / 32768.0F;
        };
        QVERIFY2(std::abs(value(in) - value(out)) <= 1.5F / 32768, qPrintable(QString::number(value(in))));
        peak = std::max(peak, std::abs(value(in)));
    }
    QCOMPARE(amplifier.level(), peak);
    in.fill(0);
    amplifier.apply(format, &in);
    QCOMPARE(amplifier.level(), peak * 0.999F);

    // A new gain is approached by 95 % with each piece.
    in = isFloat ? littleEndian<float>({0.1F}) : littleEndian<qint16>({3277});
    amplifier.setTarget(0);
    amplifier.apply(format, &in);
    const float step = isFloat ? qFromLittleEndian<float>(in.constData())
                               : float(qFromLittleEndian<qint16>(in.constData())) / 32768.0F;
    QVERIFY(std::abs(step - 0.1 * 0.05 * std::clamp(gain, 0.0, 5.0)) < 1.5 / 32768);
}

void AmplifiedPlayerTest::changesState()
{
    const auto player = load(SoundFile::numbered(kRate, kRate * 10));
    QStringList events;
    connect(player.get(), &KelAmplifiedAudioPlayer::stateChanged, this,
            [&](bool playing) { events << (playing ? "playing" : "not playing"); });
    connect(player.get(), &KelAmplifiedAudioPlayer::positionChanged, this,
            [&](qint64 position) { events << QString::number(position); });
    const auto take = [&events] { return std::exchange(events, {}); };

    player->pause();
    player->stop();
    QCOMPARE(script->starts, 0); // nothing has been played yet
    player->play();
    player->play();
    QCOMPARE(take(), QStringList{"playing"});
    nowMs += 150;
    QCOMPARE(player->position(), qint64(150));
    player->pause();
    nowMs += 5000;
    player->pause();
    QCOMPARE(player->position(), qint64(150));
    player->play();
    nowMs += 30;
    QCOMPARE(player->position(), qint64(180));
    QCOMPARE(SoundFile::numberAt(script->last->written(), 0), kRate * 150 / 1000); // no sound was skipped
    take();
    player->seek(3333);
    QCOMPARE(take(), (QStringList{"not playing", "3333", "playing"}));
    QCOMPARE(SoundFile::numberAt(script->last->written(), 0), kRate * 3333 / 1000);
    nowMs += 50;
    QCOMPARE(player->position(), qint64(3383));
    player->stop();
    QCOMPARE(take(), (QStringList{"not playing", "0"}));
    player->seek(20'000); // clamped to the file
    QCOMPARE(take(), QStringList{"10000"});
    player->stop();
    QCOMPARE(player->position(), qint64(0));
}

void AmplifiedPlayerTest::followsRate()
{
    for (const double rate : {0.1, 0.5, 0.96, 1.0, 1.5, 2.0, 16.0}) {
        const auto player = load(SoundFile::numbered(kRate, kRate * 10));
        player->setRate(rate);
        player->seek(1000);
        player->play();
        nowMs += 100;
        player->processAudioData();
        const QByteArray &written = script->last->written();
        for (int i = 0; i < written.size() / 4; ++i)
            QCOMPARE(SoundFile::numberAt(written, i * 4), int(kRate + i * rate));
        QVERIFY(std::abs(player->exactPosition() - (1000 + 100 * rate)) < 0.01);
        player->setRate(0);
        player->setRate(std::numeric_limits<double>::quiet_NaN());
        QCOMPARE(player->rate(), rate);
    }
}

/// A tone from 3 s on is heard with its pitch, when it is due, also after corrections of the rate.
void AmplifiedPlayerTest::keepsPitch()
{
    constexpr int rate = 8000;
    if (!StretchedSound::supports(rate, 1, 2.0))
        QSKIP("built without SoundTouch");
    const auto player = load(SoundFile::wav(rate, 16, Sound::make(60, Sound::tone(440, 0.5, 3.0), rate, 1).pcm16()));
    player->setKeepsPitch(true);
    for (const double speed : {0.5, 1.5, 2.0, 4.0, 10.0}) {
        player->setRate(speed);
        player->seek(1000);
        player->play();
        for (int i = 0; i < 50; ++i) {
            nowMs += 100;
            player->setRate(speed * (i < 20 ? 1.01 : 0.99));
            player->processAudioData();
        }
        QVERIFY(std::abs(player->exactPosition() - (1000 + 5000 * speed * 0.998)) < 10 * speed);
        Sound sound{rate, 1, {}};
        const QByteArray &written = script->last->written();
        for (int i = 0; i < written.size(); i += 2)
            sound.samples.push_back(float(qFromLittleEndian<qint16>(written.constData() + i)) / 32768);
        QVERIFY2(std::abs(sound.onset(0.25) - 2.0 / speed / 1.01) < 0.03,
                 qPrintable(QString::number(sound.onset(0.25))));
        QVERIFY2(sound.level(440, 4.5, 4.6) > 0.42, qPrintable(QString::number(speed)));
        player->pause();
    }
}

void AmplifiedPlayerTest::playsShortEndings()
{
    const auto player = load(SoundFile::numbered(kRate, kRate * 10));
    player->seek(9950);
    player->play();
    const QByteArray &written = script->last->written();
    QCOMPARE(SoundFile::numberAt(written, 49 * kRate / 1000 * 4), 9999 * kRate / 1000);
    QCOMPARE(SoundFile::numberAt(written, 51 * kRate / 1000 * 4), 0);
    QCOMPARE(script->last->bytesFree(), 0); // a device may start only once its buffer is full
    const QSignalSpy states(player.get(), &KelAmplifiedAudioPlayer::stateChanged);
    nowMs += 49;
    QVERIFY(player->isPlaying());
    nowMs += 1;
    QTRY_VERIFY(!player->isPlaying());
    QCOMPARE(player->position(), qint64(0));
    QCOMPARE(states.size(), 1);
}

void AmplifiedPlayerTest::mutes()
{
    const auto player = load(SoundFile::wav(kRate, 8, QByteArray(kRate * 10, char(0xff))));
    player->setGain(0.1);
    player->setMuted(true);
    player->play();
    QCOMPARE(script->volume, 0.0);
    QCOMPARE(script->last->written(), QByteArray(kRate / 5, char(0x80)));
    player->setMuted(false);
    QCOMPARE(script->volume, 1.0);
    player->seek(0);
    QCOMPARE(script->last->written(), QByteArray(kRate / 5, char(0xff))); // 8-bit samples are not amplified
}

QTEST_GUILESS_MAIN(AmplifiedPlayerTest)
#include "tst_amplified_player.moc"
