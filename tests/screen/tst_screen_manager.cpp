// The seam for other backends, and logical against physical pixels.
#include "screen/KelScreenManager.h"
#include "screen/PhysicalRect.h"
#include "style/PixelRatio.h"
#include "support/X11Painter.h"

#include <QGuiApplication>
#include <QtTest>

#include <memory>

namespace
{

class ScriptedStreamer : public KelScreenStreamer
{
public:
    bool hasFrameChanged() override { return true; }
    bool captureTo(QImage &image) override
    {
        image = QImage(2, 2, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::green);
        return true;
    }
    QString errorString() const override { return {}; }
};

class ScriptedBackend : public KelScreenBackend
{
public:
    std::unique_ptr<KelScreenStreamer> createStreamer(const QRect &rect) override
    {
        lastRect = rect;
        return std::make_unique<ScriptedStreamer>();
    }
    QString errorString() const override { return "scripted"; }

    static inline QRect lastRect;
};

std::unique_ptr<KelScreenStreamer> streamerFor(const QRect &rect)
{
    return std::unique_ptr<KelScreenStreamer>(KelScreenManager::instance()->createScreenStreamer(rect));
}

} // namespace

class tst_screen_manager : public QObject
{
    Q_OBJECT

private slots:
    void backendsCanBeReplaced()
    {
        KelScreenManager *manager = KelScreenManager::instance();
        manager->setBackend(std::make_unique<ScriptedBackend>());
        QCOMPARE(manager->errorString(), "scripted");
        const auto streamer = streamerFor({1, 2, 3, 4});
        QCOMPARE(ScriptedBackend::lastRect, QRect(1, 2, 3, 4));

        manager->setBackend(nullptr);
        QCOMPARE(manager->errorString(), QString());
        QImage image;
        QVERIFY(streamer->captureTo(image)); // it outlives its backend
        QVERIFY(streamerFor({0, 0, 30, 20})->captureTo(image));
        QCOMPARE(image.size(), QSize(30, 20));
    }

    void mapsRectangles_data()
    {
        QTest::addColumn<QRect>("logical");
        QTest::addColumn<QPoint>("origin");
        QTest::addColumn<double>("ratio");
        QTest::addColumn<QRect>("physical");
        QTest::newRow("unscaled") << QRect(10, 20, 301, 201) << QPoint(0, 0) << 1.0 << QRect(10, 20, 301, 201);
        QTest::newRow("twice") << QRect(10, 20, 301, 201) << QPoint(0, 0) << 2.0 << QRect(20, 40, 602, 402);
        QTest::newRow("half away from zero") << QRect(3, 5, 301, 201) << QPoint(0, 0) << 1.5 << QRect(5, 8, 452, 302);
        QTest::newRow("second screen") << QRect(1930, 10, 100, 80) << QPoint(1920, 0) << 2.0
                                       << QRect(1940, 20, 200, 160);
        QTest::newRow("left of it") << QRect(1915, -5, 100, 80) << QPoint(1920, 0) << 1.5 << QRect(1912, -8, 150, 120);
        QTest::newRow("quarters") << QRect(1, 1, 102, 77) << QPoint(0, 0) << 1.25 << QRect(1, 1, 128, 96);
    }

    void mapsRectangles()
    {
        QFETCH(QRect, logical);
        QFETCH(QPoint, origin);
        QFETCH(double, ratio);
        QFETCH(QRect, physical);
        QCOMPARE(physicalRect(logical, {origin, ratio}), physical);
    }

    void capturesPhysicalPixels_data()
    {
        QTest::addColumn<QByteArray>("scale");
        QTest::addColumn<double>("ratio");
        QTest::addColumn<QRect>("physical");
        QTest::newRow("1") << QByteArray("1") << 1.0 << QRect(33, 21, 201, 101);
        QTest::newRow("1.5") << QByteArray("1.5") << 1.5 << QRect(50, 32, 302, 152);
        QTest::newRow("2") << QByteArray("2") << 2.0 << QRect(66, 42, 402, 202);
    }

    void capturesPhysicalPixels()
    {
        QFETCH(QByteArray, scale);
        QFETCH(double, ratio);
        QFETCH(QRect, physical);
        const QRect logical(33, 21, 201, 101);
        qputenv("QT_SCALE_FACTOR", scale);
        int argc = 1;
        char name[] = "tst_screen_manager";
        char *argv[] = {name, nullptr};
        QGuiApplication application(argc, argv);
        QCOMPARE(getDevicePixelRatio(logical), ratio);

        X11Painter painter;
        painter.fill(painter.root(), {0, 0, 1280, 800}, 0xff000055);
        painter.fill(painter.root(), physical, 0xff005500);
        painter.sync();
        QImage image;
        QVERIFY(streamerFor(logical)->captureTo(image));
        QImage expected(physical.size(), QImage::Format_ARGB32_Premultiplied);
        expected.fill(0xff005500);
        QCOMPARE(image, expected);
    }

    void withoutAnApplicationPixelsArePhysical()
    {
        QCOMPARE(getPixelRatio({0, 0, 10, 10}), 1.0);
        QCOMPARE(getDevicePixelRatio({0, 0, 10, 10}), 1.0);
        QCOMPARE(physicalRect({5, 6, 7, 8}), QRect(5, 6, 7, 8));
    }
};

QTEST_APPLESS_MAIN(tst_screen_manager)
#include "tst_screen_manager.moc"
