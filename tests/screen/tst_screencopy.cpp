// Captures of a Wayland compositor's outputs, compared with what a window shows there.
#include "screen/KelScreenManager.h"
#include "support/PaintedWindow.h"

#include <QPainter>
#include <QProcess>
#include <QtTest>

#include <csignal>
#include <memory>

namespace
{

constexpr int kLimitMs = 10000;
constexpr QRect kWindow(100, 80, 200, 150);

/// An image whose pixels encode their positions.
QImage positions(const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x, y, 77));
    }
    return image;
}

void sway(const QStringList &command)
{
    QCOMPARE(QProcess::execute("swaymsg", QStringList("-q") + command), 0);
}

class Capture
{
public:
    explicit Capture(const QRect &rect, bool withPointer = false)
        : m_streamer(KelScreenManager::instance()->createScreenStreamer(rect, withPointer))
    {
    }

    /// Captures when something has changed.
    const QImage &frame()
    {
        if (m_streamer->hasFrameChanged())
            m_streamer->captureTo(m_frame);
        return m_frame;
    }

    KelScreenStreamer *operator->() const { return m_streamer.get(); }

private:
    const std::unique_ptr<KelScreenStreamer> m_streamer;
    QImage m_frame;
};

} // namespace

class ScreencopyTest : public QObject
{
    Q_OBJECT

private slots:
    void capturesWhatChanges();
    void turnsTheFramesOfATurnedOutput_data();
    void turnsTheFramesOfATurnedOutput();
    void spansOutputs();
    void followsTheSizeOfAnOutput();
    void reportsALostCompositor();
};

void ScreencopyTest::capturesWhatChanges()
{
    PaintedWindow window(kWindow, 0xff336699);
    PaintedWindow outside({600, 400, 30, 20}, 0xff336699);
    window.paint(positions(kWindow.size()));
    const QRect area = kWindow.adjusted(10, 10, -10, -10);
    const QImage inside = positions(kWindow.size()).copy({{10, 10}, area.size()});
    Capture first(area);
    QTRY_COMPARE_WITH_TIMEOUT(first.frame(), inside, kLimitMs);
    Capture capture(area);
    QVERIFY(capture->hasFrameChanged());
    QCOMPARE(capture.frame(), inside); // at once, although nothing changes
    PaintedWindow nextToIt({kWindow.topRight() + QPoint(1, 0), QSize(50, 50)}, 0xff000000);
    for (const QRgb color : {0xffff0000, 0xff00ff00}) {
        outside.paint(color);
        window.paint(color);
        window.paint(positions(kWindow.size()));
        QTRY_COMPARE_WITH_TIMEOUT(capture.frame(), inside, kLimitMs);
    }
}

void ScreencopyTest::turnsTheFramesOfATurnedOutput_data()
{
    QTest::addColumn<QString>("transform");
    for (const char *transform : {"90", "180", "270", "flipped", "flipped-90", "flipped-180", "flipped-270"})
        QTest::newRow(transform) << QString(transform);
}

void ScreencopyTest::turnsTheFramesOfATurnedOutput()
{
    QFETCH(QString, transform);
    sway({"output", "HEADLESS-1", "transform", transform});
    const auto restore = qScopeGuard([] { sway({"output", "HEADLESS-1", "transform", "normal"}); });
    PaintedWindow window(kWindow, 0xff336699);
    window.paint(positions(kWindow.size()));
    Capture capture(kWindow);
    QTRY_COMPARE_WITH_TIMEOUT(capture.frame(), positions(kWindow.size()), kLimitMs);
    window.paint(0xff00ff00);
    window.paint(positions(kWindow.size()).mirrored());
    QTRY_COMPARE_WITH_TIMEOUT(capture.frame(), positions(kWindow.size()).mirrored(), kLimitMs);
}

void ScreencopyTest::spansOutputs()
{
    PaintedWindow left({1280 - 20, 100, 20, 30}, 0xffff0000);
    PaintedWindow right({1280, 100, 20, 30}, 0xff0000ff);
    QImage expected(60, 50, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::black);
    QPainter(&expected).fillRect(10, 10, 20, 30, Qt::red);
    QPainter(&expected).fillRect(30, 10, 20, 30, Qt::blue);
    Capture capture({1280 - 30, 90, 60, 50});
    QTRY_COMPARE_WITH_TIMEOUT(capture.frame().copy(10, 10, 40, 30), expected.copy(10, 10, 40, 30), kLimitMs);
}

void ScreencopyTest::followsTheSizeOfAnOutput()
{
    PaintedWindow window(kWindow, 0xffffffff);
    Capture capture(kWindow);
    QImage expected(kWindow.size(), QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::white);
    QTRY_COMPARE_WITH_TIMEOUT(capture.frame(), expected, kLimitMs);

    const int kept = 120; // columns
    QPainter(&expected).fillRect(kept, 0, kWindow.width(), kWindow.height(), Qt::black);
    sway({"output", "HEADLESS-1", "mode", QString("%1x720@60Hz").arg(kWindow.x() + kept)});
    const auto restore = qScopeGuard([] { sway({"output", "HEADLESS-1", "mode", "1280x720@60Hz"}); });
    QTRY_COMPARE_WITH_TIMEOUT(capture.frame(), expected, kLimitMs);
    QCOMPARE(capture->errorString(), QString());
}

/// The last, because it ends the session.
void ScreencopyTest::reportsALostCompositor()
{
    Capture capture(kWindow);
    QTRY_VERIFY_WITH_TIMEOUT(!capture.frame().isNull(), kLimitMs);
    const QString lost = "The connection to the Wayland compositor is lost.";
    QTest::ignoreMessage(QtWarningMsg, qPrintable("[ScreencopyStreamer] " + lost));
    kill(qEnvironmentVariableIntValue("COMPOSITOR_PID"), SIGKILL);
    QTRY_COMPARE_WITH_TIMEOUT(capture->errorString(), lost, kLimitMs);
    QVERIFY(!capture->hasFrameChanged());
    QVERIFY(KelScreenManager::instance()->errorString().contains("no connection to the Wayland compositor"));
}

QTEST_GUILESS_MAIN(ScreencopyTest)
#include "tst_screencopy.moc"
