// Streamers on X servers that are missing, lack extensions, are resized, do not respond or die.
#include "screen/KelScreenManager.h"
#include "support/EnvironmentChange.h"
#include "support/TestTable.h"
#include "support/x11/X11Painter.h"
#include "support/x11/XServer.h"

#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>

namespace
{

const QRect kWholeScreen(0, 0, 800, 600);

std::unique_ptr<KelScreenStreamer> streamerFor(const QRect &rect)
{
    return std::unique_ptr<KelScreenStreamer>(KelScreenManager::instance()->createScreenStreamer(rect));
}

} // namespace

class ScreenServerTest : public QObject
{
    Q_OBJECT

private slots:
    void reportsWhyThereIsNoScreen()
    {
        struct Case {
            QByteArray display;
            QByteArray wayland;
            QString reason;
        };
        const QString waylandSession =
            "this is a Wayland session whose screen cannot be reached. Install xdg-desktop-portal with the part "
            "for your desktop, and PipeWire, or log out and choose an X11 session (often called \"Xorg\") on the "
            "login screen.";
        for (const Case &c : {Case{{}, {}, "there is no display (DISPLAY is not set)."},
                              {":4999", {}, "no connection to the X server \":4999\"."},
                              {"what?", {}, "no connection to the X server \"what?\"."},
                              {{}, "wayland-0", waylandSession},
                              {":4999", "wayland-0", waylandSession}}) {
            const EnvironmentChange changes[] = {{"DISPLAY", c.display}, {"WAYLAND_DISPLAY", c.wayland}};
            const QString reason = "The screen cannot be captured: " + c.reason;
            QCOMPARE(KelScreenManager::instance()->errorString(), reason);

            const auto streamer = streamerFor(kWholeScreen);
            QCOMPARE(streamer->errorString(), reason);
            QVERIFY(!streamer->hasFrameChanged());
            QImage image(3, 2, QImage::Format_RGB32);
            image.fill(Qt::red);
            const QImage before = image;
            QVERIFY(!streamer->captureTo(image));
            QCOMPARE(image, before);
        }
    }

    void refusesInvalidRectangles()
    {
        const XServer server;
        const EnvironmentChange change("DISPLAY", server.display());
        QCOMPARE(streamerFor({})->errorString(), "The screen cannot be captured: the rectangle is empty.");

        QCOMPARE(streamerFor({0, 0, 10, 32768})->errorString(),
                 "The screen cannot be captured: the rectangle (10 x 32768) is larger than any screen.");
    }

    void worksWithoutExtensions_data()
    {
        const TestTable<QStringList, bool> row("arguments", "detectsChanges");
        const QStringList usual{"-screen", "0", "800x600x24"};
        row("usual", usual, true);
        row("without shared memory", usual + QStringList{"-extension", "MIT-SHM"}, true);
        row("without damage", usual + QStringList{"-extension", "DAMAGE"}, false);
    }

    void worksWithoutExtensions()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, detectsChanges);
        const XServer server(arguments);
        const EnvironmentChange change("DISPLAY", server.display());
        X11Painter painter;
        QVERIFY(painter.isConnected());
        QCOMPARE(KelScreenManager::instance()->errorString(), QString());
        const auto streamer = streamerFor(kWholeScreen);
        QImage image;
        for (int i = 0; i < 5; ++i) {
            painter.fill(painter.root(), {i * 30, i * 20, 100, 50}, 0xff000000u | quint32(i) * 0x102030);
            painter.fill(painter.root(), {700 - i * 30, i * 90, 77, 50}, 0xffffffff);
            painter.sync();
            QVERIFY(streamer->hasFrameChanged());
            QVERIFY(streamer->captureTo(image));
            QCOMPARE(image, painter.grab(kWholeScreen));
        }
        QCOMPARE(streamer->hasFrameChanged(), !detectsChanges);
    }

    void convertsPixelFormats()
    {
        for (const auto &[screen, tolerance] : {std::pair("800x600x15", 8), {"800x600x16", 8}, {"800x600x30", 1}}) {
            const XServer server({"-screen", "0", screen});
            const EnvironmentChange change("DISPLAY", server.display());
            X11Painter painter;
            QVERIFY(painter.isConnected());
            const QRect rect(31, 20, 201, 100); // an odd width, so that lines are padded
            const auto streamer = streamerFor(rect);
            QImage image;
            QVERIFY(streamer->captureTo(image));
            for (const QRgb color : {0xffffffffu, 0xff0080ffu, 0xff804020u, 0xff000000u}) {
                painter.fill(painter.root(), {40, 30, 33, 22}, color);
                painter.sync();
                QVERIFY(streamer->captureTo(image));
                const QRgb pixel = image.pixel(QPoint(40, 30) - rect.topLeft());
                const int off = qMax(qAbs(qRed(pixel) - qRed(color)),
                                     qMax(qAbs(qGreen(pixel) - qGreen(color)), qAbs(qBlue(pixel) - qBlue(color))));
                QVERIFY2(off <= tolerance && qAlpha(pixel) == 0xff, QByteArray::number(pixel, 16));
            }
        }
    }

    void reportsUnsupportedPixelFormat()
    {
        const XServer server({"-screen", "0", "800x600x8"});
        const EnvironmentChange change("DISPLAY", server.display());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("depth 8"));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("depth 8"));
        QVERIFY(KelScreenManager::instance()->errorString().contains("depth 8"));
        const auto streamer = streamerFor(kWholeScreen);
        QVERIFY(streamer->errorString().contains("depth 8"));
        QVERIFY(!streamer->hasFrameChanged());
        QImage image;
        QVERIFY(!streamer->captureTo(image));
    }

    void followsResizedScreen()
    {
        const XServer server;
        const EnvironmentChange change("DISPLAY", server.display());
        X11Painter painter;
        painter.fill(painter.root(), kWholeScreen, 0xff008800);
        painter.sync();
        const QRect rect(100, 100, 700, 500);
        const auto streamer = streamerFor(rect);
        QImage image;
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(image.pixel(650, 450), 0xff008800);

        QCOMPARE(QProcess::execute("xrandr", {"--output", "screen", "--off", "--fb", "640x480"}), 0);
        painter.sync();
        QVERIFY(streamer->hasFrameChanged());
        painter.fill(painter.root(), kWholeScreen, 0xff000088);
        painter.sync();
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(image.size(), rect.size());
        QCOMPARE(image.pixel(539, 379), 0xff000088);
        QCOMPARE(image.pixel(540, 379), 0xff000000);
        QCOMPARE(image.pixel(539, 380), 0xff000000);

        QCOMPARE(QProcess::execute("xrandr", {"--fb", "800x600"}), 0);
        painter.fill(painter.root(), kWholeScreen, 0xff880000);
        painter.sync();
        QVERIFY(streamer->hasFrameChanged());
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(image.pixel(0, 0), 0xff880000);
        QCOMPARE(image.pixel(699, 499), 0xff880000);
    }

    void capturesDuringResize()
    {
        const XServer server;
        const EnvironmentChange change("DISPLAY", server.display());
        const auto streamer = streamerFor(kWholeScreen);
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
            captured = captured && streamer->captureTo(image) && image.size() == kWholeScreen.size();
        }
        resizer.join();
        QVERIFY2(captured, qPrintable(streamer->errorString()));
    }

    void failsWhenServerDies()
    {
        XServer server;
        const EnvironmentChange change("DISPLAY", server.display());
        const auto streamer = streamerFor(kWholeScreen);
        const auto other = streamerFor(kWholeScreen);
        QImage image;
        QVERIFY(streamer->captureTo(image));
        const QImage before = image;
        server.kill();

        const QString lost = "The connection to the X server is lost.";
        QTest::ignoreMessage(QtWarningMsg, qPrintable("[X11ScreenStreamer] " + lost)); // once per streamer
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

    void waitsOnceForUnresponsiveServer()
    {
        XServer server;
        const EnvironmentChange change("DISPLAY", server.display());
        X11Painter painter;
        const auto streamer = streamerFor(kWholeScreen);
        QImage image;
        QVERIFY(streamer->captureTo(image));
        painter.fill(painter.root(), {100, 100, 10, 10}, 0xffabcdef);
        painter.sync();
        server.freeze();

        QTest::ignoreMessage(QtWarningMsg, "[X11ScreenStreamer] The X server does not respond.");
        QVERIFY(!streamer->captureTo(image));
        for (int tick = 0; tick < 10000; ++tick) { // would take hours if each call waited
            QVERIFY(!streamer->hasFrameChanged());
            QVERIFY(!streamer->captureTo(image));
        }
        QVERIFY(streamer->isStalled());
        QCOMPARE(streamer->errorString(), QString()); // it may respond again

        server.thaw();
        QTRY_VERIFY(streamer->hasFrameChanged());
        QVERIFY(streamer->captureTo(image));
        QVERIFY(!streamer->isStalled());
        QCOMPARE(image, painter.grab(kWholeScreen));
    }
};

QTEST_GUILESS_MAIN(ScreenServerTest)
#include "tst_screen_server.moc"
