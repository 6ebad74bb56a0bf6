// Captures of an X screen, compared with what another client reads from it.
#include "screen/KelScreenManager.h"
#include "support/x11/X11Painter.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>

namespace
{

constexpr QImage::Format kFrameFormat = QImage::Format_ARGB32_Premultiplied;

std::unique_ptr<KelScreenStreamer> streamerFor(const QRect &rect)
{
    return std::unique_ptr<KelScreenStreamer>(KelScreenManager::instance()->createScreenStreamer(rect));
}

/// An image whose pixels encode their positions.
QImage positions(const QSize &size)
{
    QImage image(size, kFrameFormat);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x & 0xff, y & 0xff, (x >> 8) << 4 | y >> 8));
    }
    return image;
}

/// The expected capture of `rect`, read by the painter.
QImage expected(X11Painter &painter, const QRect &rect)
{
    QImage image(rect.size(), kFrameFormat);
    image.fill(Qt::black);
    const QRect visible = rect & QRect({0, 0}, painter.screenSize());
    if (!visible.isEmpty()) {
        QPainter blit(&image);
        blit.drawImage(visible.topLeft() - rect.topLeft(), painter.grab(visible));
    }
    return image;
}

/// Draws at random positions, partly outside of the screen, as programs on a desktop do.
class Scribbler
{
public:
    Scribbler(X11Painter &painter, quint32 seed)
        : m_painter(painter)
        , m_random(seed)
        , m_window(painter.createWindow({50, 50, 200, 150}, 0xff336699))
    {
    }

    ~Scribbler() { m_painter.destroyWindow(m_window); }

    void draw()
    {
        const int kind = m_random.bounded(10);
        if (kind == 0)
            m_painter.moveWindow(m_window, {m_random.bounded(-100, 1200), m_random.bounded(-100, 700)});
        else if (kind == 1)
            m_painter.put(m_painter.root(), {m_random.bounded(1200), m_random.bounded(700)}, positions({40, 9}));
        else
            m_painter.fill(
                m_random.bounded(2) ? m_window : m_painter.root(),
                {m_random.bounded(1250), m_random.bounded(780), m_random.bounded(1, 90), m_random.bounded(1, 60)},
                m_random.generate());
    }

private:
    X11Painter &m_painter;
    QRandomGenerator m_random;
    const xcb_window_t m_window;
};

/// A modification of the image between two captures.
using Replace = void (*)(QImage &);

} // namespace

Q_DECLARE_METATYPE(Replace)

class ScreenCaptureTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(m_painter.isConnected());
        m_painter.put(m_painter.root(), {0, 0}, positions(m_painter.screenSize()));
        m_painter.sync();
    }

    void capturesRectangle_data()
    {
        QTest::addColumn<QRect>("rect");
        QTest::newRow("whole screen") << QRect(0, 0, 1280, 800);
        QTest::newRow("inside") << QRect(101, 57, 333, 217);
        QTest::newRow("one pixel") << QRect(1279, 799, 1, 1);
        QTest::newRow("over the top left") << QRect(-30, -20, 100, 90);
        QTest::newRow("over the bottom right") << QRect(1200, 750, 101, 99);
        QTest::newRow("larger than the screen") << QRect(-5, -7, 1300, 820);
        QTest::newRow("touching from outside") << QRect(1280, 0, 64, 64);
        QTest::newRow("far outside") << QRect(-40000, 70000, 64, 48);
    }

    void capturesRectangle()
    {
        QFETCH(QRect, rect);
        const auto streamer = streamerFor(rect);
        QVERIFY(streamer->hasFrameChanged());
        QVERIFY(streamer->hasFrameChanged());

        QImage image;
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(image.format(), kFrameFormat);
        QCOMPARE(image, expected(m_painter, rect));
        QCOMPARE(streamer->errorString(), QString());
        QVERIFY(!streamer->hasFrameChanged());

        // Later captures read only the changed parts.
        m_painter.fill(m_painter.root(), {0, 0, 40, 30}, 0xff112233);
        m_painter.fill(m_painter.root(), {1230, 760, 50, 40}, 0xff332211);
        m_painter.sync();
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(image, expected(m_painter, rect));
    }

    void incrementalCapturesAreComplete()
    {
        const QRect rect(60, 40, 1000, 700);
        const auto streamer = streamerFor(rect);
        QImage image;
        QVERIFY(streamer->captureTo(image));
        Scribbler scribbler(m_painter, 7);
        // Few changes at a time, and more rectangles than are read one by one.
        for (const auto &[captures, drawsPerCapture] : {std::pair(120, 4), {4, 400}}) {
            for (int capture = 0; capture < captures; ++capture) {
                for (int query = 0; query < 2;
                     ++query) { // the first one without a capture, as while an encoder is busy
                    for (int i = 0; i < drawsPerCapture / 2; ++i)
                        scribbler.draw();
                    m_painter.sync();
                    streamer->hasFrameChanged();
                }
                if (streamer->hasFrameChanged())
                    QVERIFY(streamer->captureTo(image));
                QCOMPARE(image, expected(m_painter, rect));
            }
        }
    }

    void reportsChangesInsideOnly()
    {
        const QRect rect(200, 100, 300, 200);
        const auto streamer = streamerFor(rect);
        QImage image(rect.size(), kFrameFormat);
        const uchar *const buffer = image.constBits();
        QVERIFY(streamer->captureTo(image));

        const QRect outside[] = {{199, 0, 1, 800}, {500, 0, 1, 800}, {0, 99, 1280, 1}, {0, 300, 1280, 1}};
        for (const QRect &edge : outside)
            m_painter.fill(m_painter.root(), edge, 0xffff0000);
        m_painter.sync();
        QVERIFY(!streamer->hasFrameChanged());

        const QPoint corners[] = {{200, 100}, {499, 100}, {200, 299}, {499, 299}};
        for (const QPoint &corner : corners) {
            m_painter.fill(m_painter.root(), {corner, QSize(1, 1)}, 0xff00ff00);
            m_painter.sync();
            QVERIFY(streamer->hasFrameChanged());
            QVERIFY(streamer->hasFrameChanged()); // true until the capture
            QVERIFY(streamer->captureTo(image));
            QVERIFY(!streamer->hasFrameChanged());
            QCOMPARE(image.pixel(corner - rect.topLeft()), 0xff00ff00);
            QCOMPARE(image.constBits(), buffer);
        }
    }

    void missesNothingWhileOthersDraw()
    {
        const QRect rect(100, 100, 800, 500);
        const auto streamer = streamerFor(rect);
        QImage image;
        std::atomic_bool done{false};
        std::thread drawer([&done] {
            X11Painter painter;
            Scribbler scribbler(painter, 11);
            for (int i = 0; i < 4000; ++i) {
                scribbler.draw();
                if (i % 16 == 0)
                    painter.sync();
            }
            painter.sync();
            done = true;
        });
        bool captured = true;
        for (int i = 0; !done || streamer->hasFrameChanged(); ++i) {
            if (i % 3 == 0)
                image = {}; // a full capture must not lose changes either
            captured = captured && (!streamer->hasFrameChanged() || streamer->captureTo(image));
        }
        drawer.join();
        m_painter.sync();
        if (streamer->hasFrameChanged())
            captured = captured && streamer->captureTo(image);
        QVERIFY(captured);
        QCOMPARE(image, expected(m_painter, rect));
    }

    void acceptsAnyImage_data()
    {
        QTest::addColumn<Replace>("replace");
        const auto row = [](const char *name, Replace replace) { QTest::newRow(name) << replace; };
        row("the same", [](QImage &) {});
        row("none", [](QImage &image) { image = {}; });
        row("another of the same size", [](QImage &image) { image = QImage(image.size(), kFrameFormat); });
        row("another size", [](QImage &image) { image = image.scaled(17, 23); });
        row("another format", [](QImage &image) { image = image.convertToFormat(QImage::Format_RGB888); });
        row("drawn into", [](QImage &image) { image.fill(Qt::red); });
        row("one pixel changed", [](QImage &image) { image.setPixel(3, 3, 0xffff0000); });
    }

    void acceptsAnyImage()
    {
        QFETCH(Replace, replace);
        const QRect rect(20, 30, 400, 300);
        const auto streamer = streamerFor(rect);
        QImage image;
        QVERIFY(streamer->captureTo(image));
        replace(image);
        m_painter.fill(m_painter.root(), {100, 100, 33, 44}, 0xff0055aa);
        m_painter.sync();
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(image.format(), kFrameFormat);
        QCOMPARE(image, expected(m_painter, rect));
    }

    void sharedImagesKeepTheirContent()
    {
        const QRect rect(20, 30, 400, 300);
        const auto streamer = streamerFor(rect);
        QImage image;
        QVERIFY(streamer->captureTo(image));
        const QImage first = image; // as held by an encoder
        const QImage firstState = expected(m_painter, rect);

        m_painter.fill(m_painter.root(), {100, 100, 33, 44}, 0xff0055aa);
        m_painter.sync();
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(first, firstState);
        QCOMPARE(image, expected(m_painter, rect));

        image = first; // the content of an older capture
        QVERIFY(streamer->captureTo(image));
        QCOMPARE(first, firstState);
        QCOMPARE(image, expected(m_painter, rect));
    }

private:
    X11Painter m_painter;
};

QTEST_MAIN(ScreenCaptureTest)
#include "tst_screen_capture.moc"
