// Logical and physical pixels.
#include "geometry/ScreenGeometry.h"
#include "screen/KelScreenManager.h"
#include "style/PixelRatio.h"
#include "support/EnvironmentChange.h"
#include "support/x11/X11Painter.h"

#include <QGuiApplication>
#include <QtTest>

#include <memory>

using namespace kel;

class ScreenManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void mapsRectangles()
    {
        struct Case {
            const char *name;
            QRect logical;
            ScreenGeometry screen;
            QRect physical;
        };
        for (const Case &c :
             {Case{"unscaled", {10, 20, 301, 201}, {{0, 0, 1920, 1080}, 1.0}, {10, 20, 301, 201}},
              {"twice", {10, 20, 301, 201}, {{0, 0, 1920, 1080}, 2.0}, {20, 40, 602, 402}},
              {"half away from zero", {3, 5, 301, 201}, {{0, 0, 1920, 1080}, 1.5}, {5, 8, 452, 302}},
              {"second screen", {1930, 10, 100, 80}, {{1920, 0, 1920, 1080}, 2.0}, {1940, 20, 200, 160}},
              {"left of it", {1915, -5, 100, 80}, {{1920, 0, 1920, 1080}, 1.5}, {1912, -8, 150, 120}},
              {"quarters", {1, 1, 102, 77}, {{0, 0, 1920, 1080}, 1.25}, {1, 1, 128, 96}}})
            QVERIFY2(c.screen.toPhysical(c.logical) == c.physical, c.name);
    }

    void capturesPhysicalPixels()
    {
        const QRect logical(33, 21, 201, 101);
        for (const auto &[scale, physical] :
             {std::pair("1", logical), {"1.5", QRect(50, 32, 302, 152)}, {"2", QRect(66, 42, 402, 202)}}) {
            const EnvironmentChange change("QT_SCALE_FACTOR", scale);
            int argc = 1;
            char name[] = "tst_screen_manager";
            char *argv[] = {name, nullptr};
            QGuiApplication application(argc, argv);
            QCOMPARE(getDevicePixelRatio(logical), QByteArray(scale).toDouble());

            X11Painter painter;
            painter.fill(painter.root(), {0, 0, 1280, 800}, 0xff000055);
            painter.fill(painter.root(), physical, 0xff005500);
            painter.sync();
            const std::unique_ptr<KelScreenStreamer> streamer(
                KelScreenManager::instance()->createScreenStreamer(logical));
            QImage image;
            QVERIFY(streamer->captureTo(image));
            QImage expected(physical.size(), QImage::Format_ARGB32_Premultiplied);
            expected.fill(0xff005500);
            QCOMPARE(image, expected);
        }
    }

    void ratioIsOneWithoutApplication()
    {
        QCOMPARE(getPixelRatio({0, 0, 10, 10}), 1.0);
        QCOMPARE(getDevicePixelRatio({0, 0, 10, 10}), 1.0);
        QCOMPARE(physicalRect({5, 6, 7, 8}), QRect(5, 6, 7, 8));
    }
};

QTEST_APPLESS_MAIN(ScreenManagerTest)
#include "tst_screen_manager.moc"
