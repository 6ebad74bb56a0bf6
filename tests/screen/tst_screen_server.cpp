// What becomes of a streamer when the X server is another than expected: missing, poorer, resized, silent or dead.
#include "screen/KelScreenManager.h"
#include "support/X11Painter.h"
#include "support/XServer.h"

#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>

namespace
{

const QRect wholeScreen(0, 0, 800, 600);

std::unique_ptr<KelScreenStreamer> streamerFor(const QRect &rect)
{
    return std::unique_ptr<KelScreenStreamer>(KelScreenManager::instance()->createScreenStreamer(rect));
}

/// Sets an environment variable, or unsets it where the value is null, and puts it back.
class EnvironmentChange
{
public:
    EnvironmentChange(const char *name, const QByteArray &value)
        : m_name(name)
        , m_wasSet(qEnvironmentVariableIsSet(name))
        , m_before(qgetenv(name))
    {
        set(value, !value.isNull());
    }

    ~EnvironmentChange() { set(m_before, m_wasSet); }
    Q_DISABLE_COPY(EnvironmentChange)

private:
    void set(const QByteArray &value, bool isSet)
    {
        if (isSet)
            qputenv(m_name, value);
        else
            qunsetenv(m_name);
    }

    const char *const m_name;
    const bool m_wasSet;
    const QByteArray m_before;
};

} // namespace

class tst_screen_server : public QObject
{
    Q_OBJECT

private slots:
    void saysWhyThereIsNoScreen_data()
    {
        QTest::addColumn<QByteArray>("display");
        QTest::addColumn<QByteArray>("wayland");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no display") << QByteArray() << QByteArray()
                                    << "The screen cannot be captured: there is no display (DISPLAY is not set).";
        QTest::newRow("no server") << QByteArray(":4999") << QByteArray()
                                   << "The screen cannot be captured: no connection to the X server \":4999\".";
        QTest::newRow("nonsense") << QByteArray("what?") << QByteArray()
                                  << "The screen cannot be captured: no connection to the X server \"what?\".";
        QTest::newRow("Wayland only")
            << QByteArray() << QByteArray("wayland-0")
            << "The screen cannot be captured: this is a Wayland session without an X server.";
        QTest::newRow("Wayland with a dead X server")
            << QByteArray(":4999") << QByteArray("wayland-0")
            << "The screen cannot be captured: this is a Wayland session, and there is no connection to its X server "
               "\":4999\".";
    }

    void saysWhyThereIsNoScreen()
    {
        QFETCH(QByteArray, display);
        QFETCH(QByteArray, wayland);
        QFETCH(QString, reason);
        const EnvironmentChange changes[] = {{"DISPLAY", display}, {"WAYLAND_DISPLAY", wayland}};
        QCOMPARE(KelScreenManager::instance()->errorString(), reason);

        const auto streamer = streamerFor(wholeScreen);
        QCOMPARE(streamer->errorString(), reason);
        QVERIFY(!streamer->hasFrameChanged());
        QImage image(3, 2, QImage::Format_RGB32);
        image.fill(Qt::red);
        const QImage before = image;
        QVERIFY(!streamer->captureTo(image));
        QCOMPARE(image, before);
    }

    void refusesWhatCannotBeCaptured()
    {
        const XServer server;
        const EnvironmentChange change("DISPLAY", server.display());
        QCOMPARE(streamerFor({})->errorString(), "The screen cannot be captured: the rectangle is empty.");

        QCOMPARE(streamerFor({0, 0, 10, 32768})->errorString(),
                 "The screen cannot be captured: the rectangle (10 x 32768) is larger than any screen.");
    }

    void worksOnPoorerServers_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("knowsWhatChanged");
        const QStringList usual{"-screen", "0", "800x600x24"};
        QTest::newRow("usual") << usual << true;
        QTest::newRow("without shared memory") << usual + QStringList{"-extension", "MIT-SHM"} << true;
        QTest::newRow("without damage") << usual + QStringList{"-extension", "DAMAGE"} << false;
    }

    void worksOnPoorerServers()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, knowsWhatChanged);
        const XServer server(arguments);
        const EnvironmentChange change("DISPLAY", server.display());
        X11Painter painter;
        QVERIFY(painter.isConnected());
        QCOMPARE(KelScreenManager::instance()->errorString(), QString());
        const auto streamer = streamerFor(wholeScreen);
        QImage image;
        for (int i = 0; i < 5; ++i) {
            painter.fill(painter.root(), {i * 30, i * 20, 100, 50}, 0xff000000u | quint32(i) * 0x102030);
            painter.fill(painter.root(), {700 - i * 30, i * 90, 77, 50}, 0xffffffff);
            painter.sync();
            QVERIFY(streamer->hasFrameChanged());
            QVERIFY(streamer->captureTo(image));
            QCOMPARE(image, painter.grab(wholeScreen));
        }
        QCOMPARE(streamer->hasFrameChanged(), !knowsWhatChanged);
    }

    void convertsOtherPixels_data()
    {
        QTest::addColumn<QString>("screen");
        QTest::addColumn<int>("tolerance");
        QTest::newRow("15 bit") << "800x600x15" << 8;
        QTest::newRow("16 bit") << "800x600x16" << 8;
        QTest::newRow("30 bit") << "800x600x30" << 1;
    }

    void convertsOtherPixels()
    {
        QFETCH(QString, screen);
        QFETCH(int, tolerance);
        const XServer server({"-screen", "0", screen});
        const EnvironmentChange change("DISPLAY", server.display());
        X11Painter painter;
        QVERIFY(painter.isConnected());
        const QRect rect(31, 20, 201, 100); // an odd width, for the padding of lines
        const auto streamer = streamerFor(rect);
        QImage image;
        QVERIFY(streamer->captureTo(image));
        for (const QRgb color : {0xffffffffu, 0xff0080ffu, 0xff804020u, 0xff000000u}) {
            painter.fill(painter.root(), {40, 30, 33, 22}, color);
            painter.sync();
            QVERIFY(streamer->captureTo(image));
            const QRgb pixel = image.pixel(QPoint(40, 30) - rect.topLeft());
            const QByteArray found = QByteArray::number(pixel, 16);
            QVERIFY2(qAbs(qRed(pixel) - qRed(color)) <= tolerance, found);
            QVERIFY2(qAbs(qGreen(pixel) - qGreen(color)) <= tolerance, found);
            QVERIFY2(qAbs(qBlue(pixel) - qBlue(color)) <= tolerance, found);
            QCOMPARE(qAlpha(pixel), 0xff);
        }
    }

    void namesPixelsThatItCannotRead()
    {
        const XServer server({"-screen", "0", "800x600x8"});
        const EnvironmentChange change("DISPLAY", server.display());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("depth 8"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("depth 8"));
        QVERIFY(KelScreenManager::instance()->errorString().contains("depth 8"));
        const auto streamer = streamerFor(wholeScreen);
        QVERIFY(streamer->errorString().contains("depth 8"));
        QVERIFY(!streamer->hasFrameChanged());
        QImage image;
        QVERIFY(!streamer->captureTo(image));
    }

    void followsAScreenThatIsResized()
    {
        const XServer server;
        const EnvironmentChange change("DISPLAY", server.display());
        X11Painter painter;
        painter.fill(painter.root(), wholeScreen, 0xff008800);
        painter.sync();
        const QRect rect(100, 100, 700, 500);
        const auto streamer = streamerFor(rect);
        QImage image;
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(image.pixel(650, 450), 0xff008800);

        QCOMPARE(QProcess::execute("xrandr", {"--output", "screen", "--off", "--fb", "640x480"}), 0);
        painter.sync();
        QVERIFY(streamer->hasFrameChanged());
        painter.fill(painter.root(), wholeScreen, 0xff000088);
        painter.sync();
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(image.size(), rect.size());
        QCOMPARE(image.pixel(539, 379), 0xff000088);
        QCOMPARE(image.pixel(540, 379), 0xff000000);
        QCOMPARE(image.pixel(539, 380), 0xff000000);

        QCOMPARE(QProcess::execute("xrandr", {"--fb", "800x600"}), 0);
        painter.fill(painter.root(), wholeScreen, 0xff880000);
        painter.sync();
        QVERIFY(streamer->hasFrameChanged());
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(image.pixel(0, 0), 0xff880000);
        QCOMPARE(image.pixel(699, 499), 0xff880000);
    }

    void capturesWhileTheScreenIsBeingResized()
    {
        const XServer server;
        const EnvironmentChange change("DISPLAY", server.display());
        const auto streamer = streamerFor(wholeScreen);
        std::atomic_bool done{false};
        std::thread resizer([&done] {
            for (int i = 0; i < 20; ++i)
                QProcess::execute("xrandr", {"--output", "screen", "--off", "--fb", i % 2 ? "800x600" : "80x60"});
            done = true;
        });
        bool captured = true;
        QImage image;
        while (!done) {
            image = {};
            captured = captured && streamer->captureTo(image) && image.size() == wholeScreen.size();
        }
        resizer.join();
        QVERIFY2(captured, qPrintable(streamer->errorString()));
    }

    void endsWithItsServer()
    {
        XServer server;
        const EnvironmentChange change("DISPLAY", server.display());
        const auto streamer = streamerFor(wholeScreen);
        const auto other = streamerFor(wholeScreen);
        QImage image;
        QVERIFY(streamer->captureTo(image));
        const QImage before = image;
        server.kill();

        const QString lost = "The connection to the X server is lost.";
        QTest::ignoreMessage(QtWarningMsg, qPrintable("[X11ScreenStreamer] " + lost)); // once for each streamer
        QTest::ignoreMessage(QtWarningMsg, qPrintable("[X11ScreenStreamer] " + lost));
        QVERIFY(!streamer->hasFrameChanged());
        QVERIFY(!other->captureTo(image));
        for (KelScreenStreamer *each : {streamer.get(), other.get()}) {
            QVERIFY(!each->captureTo(image));
            QVERIFY(!each->hasFrameChanged());
            QCOMPARE(each->errorString(), lost);
        }
        QCOMPARE(image, before);
    }

    void waitsForASilentServerOnlyOnce()
    {
        XServer server;
        const EnvironmentChange change("DISPLAY", server.display());
        X11Painter painter;
        const auto streamer = streamerFor(wholeScreen);
        QImage image;
        QVERIFY(streamer->captureTo(image));
        painter.fill(painter.root(), {100, 100, 10, 10}, 0xffabcdef);
        painter.sync();
        server.freeze();

        QTest::ignoreMessage(QtWarningMsg, "[X11ScreenStreamer] The X server does not answer.");
        QVERIFY(!streamer->captureTo(image));
        for (int tick = 0; tick < 10000; ++tick) { // would take hours if each waited
            QVERIFY(!streamer->hasFrameChanged());
            QVERIFY(!streamer->captureTo(image));
        }
        QCOMPARE(streamer->errorString(), "The X server does not answer.");

        server.thaw();
        QTRY_VERIFY(streamer->hasFrameChanged());
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(streamer->errorString(), QString());
        QCOMPARE(image, painter.grab(wholeScreen));
    }
};

QTEST_GUILESS_MAIN(tst_screen_server)
#include "tst_screen_server.moc"
