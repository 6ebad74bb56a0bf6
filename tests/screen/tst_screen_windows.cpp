#include "screen/KelScreenManager.h"
#include "screen/KelWindowList.h"
#include "screen/windows/CursorImage.h"
#include "screen/windows/ImageChanges.h"
#include "screen/windows/SurfaceRotation.h"
#include "screen/windows/WindowsScreenStreamer.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QRasterWindow>
#include <QTransform>
#include <QtTest>

#include <windows.h>

using namespace kel;

namespace
{

constexpr QRgb kBlack = 0xff000000;
constexpr QRgb kWhite = 0xffffffff;

QImage filledImage(const QSize &size, QRgb color)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

/// Follows a script with one word per update: "same", "new" (the color of the image changes), "not now", "never".
class ScriptedReader final : public DesktopReader
{
public:
    explicit ScriptedReader(const QStringList &script, QRgb color)
        : m_script(script)
        , m_image(filledImage({4, 3}, color))
    {
    }

    Update update() override
    {
        const QString word = m_script.isEmpty() ? "same" : m_script.takeFirst();
        if (word == "not now")
            return {State::NotNow, {}};
        if (word == "never")
            return {State::Unusable, {}};
        const QRect changed = m_isFirst ? m_image.rect() : QRect(1, 1, 2, 1);
        const bool isNew = std::exchange(m_isFirst, false) || word == "new";
        if (word == "new")
            m_image.fill(m_image.pixel(0, 0) + 1);
        return {State::Ready, isNew ? QRegion(changed) : QRegion()};
    }
    const QImage &image() const override { return m_image; }

private:
    QStringList m_script;
    QImage m_image;
    bool m_isFirst = true;
};

/// A window of one color in the corner of the desktop.
class ColorWindow : public QRasterWindow
{
public:
    ColorWindow()
    {
        setFlags(Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
        setGeometry(0, 0, 200, 100);
    }
    void paint(const QColor &color)
    {
        m_color = color;
        update();
    }

protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(QRect(0, 0, width(), height()), m_color); }

private:
    QColor m_color = Qt::red;
};

} // namespace

class ScreenWindowsTest : public QObject
{
    Q_OBJECT

private slots:
    void rotates_data();
    void rotates();
    void findsChanges();
    void streams_data();
    void streams();
    void copiesChangesOnly();
    void convertsPointers();
    void captures();
    void capturesPointer();
};

void ScreenWindowsTest::rotates_data()
{
    QTest::addColumn<int>("degrees");
    for (const int degrees : {0, 90, 180, 270})
        QTest::addRow("%d", degrees) << degrees;
}

void ScreenWindowsTest::rotates()
{
    QFETCH(int, degrees);
    QImage surface(7, 5, QImage::Format_RGB32);
    for (QRgb i = 0; i < 35; ++i)
        surface.setPixel(int(i) % 7, int(i) / 7, i);
    const QTransform transform = QTransform().rotate(degrees);
    const QImage screen = surface.transformed(transform);
    const SurfaceRotation rotation(degrees, surface.size());
    for (const QRect &part : {QRect(0, 0, 7, 5), QRect(1, 2, 4, 1), QRect(6, 0, 1, 5), QRect(3, 4, 1, 1)}) {
        const QRect there = rotation.toScreen(part);
        QCOMPARE(screen.copy(there), surface.copy(part).transformed(transform));
        QCOMPARE(rotation.toSurface(there), part);
    }
}

void ScreenWindowsTest::findsChanges()
{
    QRandomGenerator random(1);
    const QImage before = filledImage({150, 100}, kBlack);
    QCOMPARE(changedRegion(before, before.copy()), QRegion());
    for (int round = 0; round < 50; ++round) {
        QImage after = before.copy();
        QRegion drawn;
        for (int count = random.bounded(1, 4); count > 0; --count) {
            const QPoint pixel(random.bounded(150), random.bounded(100));
            after.setPixel(pixel, kWhite);
            drawn += QRect(pixel, QSize(1, 1));
        }
        const QRegion changed = changedRegion(before, after);
        QCOMPARE(drawn - changed, QRegion());
        QVERIFY(drawn.boundingRect().left() == changed.boundingRect().left());
        QVERIFY(drawn.boundingRect().right() == changed.boundingRect().right());
    }
}

void ScreenWindowsTest::streams_data()
{
    QTest::addColumn<QStringList>("first");
    QTest::addColumn<QStringList>("second");
    QTest::addColumn<QString>(
        "expected"); // one letter per update: changed, unchanged; upper case for the second reader
    QTest::addColumn<bool>("fails");

    QTest::newRow("static desktop") << QStringList{"new", "same", "same"} << QStringList() << "c--" << false;
    QTest::newRow("changing desktop") << QStringList{"new", "new", "same", "new"} << QStringList() << "cc-c" << false;
    QTest::newRow("locked for a while") << QStringList{"new", "not now", "not now", "same", "new"} << QStringList()
                                        << "c---c" << false;
    QTest::newRow("nothing at first") << QStringList{"not now", "same"} << QStringList() << "-c" << false;
    QTest::newRow("refused") << QStringList{"never"} << QStringList{"new", "same", "new"} << "C-C" << false;
    QTest::newRow("lost for good") << QStringList{"new", "same", "never"} << QStringList{"same", "new"} << "c-CC"
                                   << false;
    QTest::newRow("both refused") << QStringList{"new", "never"} << QStringList{"never"} << "c--" << true;
}

void ScreenWindowsTest::streams()
{
    QFETCH(QStringList, first);
    QFETCH(QStringList, second);
    QFETCH(QString, expected);
    QFETCH(bool, fails);

    if (fails)
        QTest::ignoreMessage(QtWarningMsg, "[WindowsScreenStreamer] Windows refuses access to the pixels of the "
                                           "desktop.");
    WindowsScreenStreamer::Readers readers;
    readers.push_back(std::make_unique<ScriptedReader>(first, kBlack));
    readers.push_back(std::make_unique<ScriptedReader>(second, 0xff800000));
    WindowsScreenStreamer streamer(std::move(readers));
    QImage image;
    QString seen;
    for (int i = 0; i < expected.size(); ++i) {
        const bool changed = streamer.hasFrameChanged();
        if (changed)
            QVERIFY(streamer.captureTo(image));
        seen += !changed ? "-" : qRed(image.pixel(1, 1)) == 0x80 ? "C" : "c";
    }
    QCOMPARE(seen, expected);
    QCOMPARE(streamer.errorString().isEmpty(), !fails);
    QCOMPARE(streamer.captureTo(image), !fails);
}

/// Only changes are copied into the image of the last capture, everything into any other image.
void ScreenWindowsTest::copiesChangesOnly()
{
    WindowsScreenStreamer::Readers readers;
    readers.push_back(std::make_unique<ScriptedReader>(QStringList{"same", "new", "new", "new"}, 0x00111111));
    WindowsScreenStreamer streamer(std::move(readers));
    QImage image;
    QVERIFY(streamer.captureTo(image));
    QCOMPARE(image.format(), QImage::Format_ARGB32_Premultiplied);
    QCOMPARE(image.pixel(0, 0), 0xff111111);
    QVERIFY(streamer.captureTo(image));
    QCOMPARE(image.pixel(1, 1), 0xff111112);
    QCOMPARE(image.pixel(0, 0), 0xff111111); // outside of the reported change
    const QImage kept = image;
    image.setPixel(0, 0, 0);
    QVERIFY(streamer.captureTo(image));
    QCOMPARE(image.pixel(0, 0), 0xff111113);
    QCOMPARE(kept.pixel(1, 1), 0xff111112);
}

void ScreenWindowsTest::convertsPointers()
{
    // Monochrome: the four combinations in a row, and one more pixel for the outline of the inverting one.
    QImage masks(5, 2, QImage::Format_RGB32);
    const bool transparent[] = {false, false, true, true, true};
    const bool white[] = {false, true, false, true, false};
    for (int x = 0; x < 5; ++x) {
        masks.setPixel(x, 0, transparent[x] ? kWhite : kBlack);
        masks.setPixel(x, 1, white[x] ? kWhite : kBlack);
    }
    const QImage mono = CursorImage::fromMasks(masks);
    const QRgb expected[] = {kBlack, kWhite, kWhite, kBlack, kWhite};
    for (int x = 0; x < 5; ++x)
        QCOMPARE(mono.pixel(x, 0), expected[x]);

    // Colors with an alpha channel, and colors with a mask.
    QImage colors(2, 1, QImage::Format_ARGB32);
    colors.setPixel(0, 0, 0x80ff0000);
    colors.setPixel(1, 0, 0x00ffffff);
    const QImage alpha = CursorImage::fromColors(colors, filledImage({2, 1}, kWhite));
    QCOMPARE(reinterpret_cast<const QRgb *>(alpha.constBits())[0], qPremultiply(0x80ff0000));
    QCOMPARE(reinterpret_cast<const QRgb *>(alpha.constBits())[1], 0u);
    colors.setPixel(0, 0, 0x0000ff00);
    colors.setPixel(1, 0, 0x00000000);
    QImage mask = filledImage({2, 1}, kBlack);
    mask.setPixel(1, 0, kWhite);
    const QImage masked = CursorImage::fromColors(colors, mask);
    QCOMPARE(masked.pixel(0, 0), 0xff00ff00);
    QCOMPARE(masked.pixel(1, 0), 0u);
}

void ScreenWindowsTest::captures()
{
    ColorWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const std::unique_ptr<KelScreenStreamer> streamer(
        KelScreenManager::instance()->createScreenStreamer({-20, -10, 100, 60}));
    QCOMPARE(streamer->errorString(), QString());
    QImage image;
    const auto shows = [&](const QColor &color) {
        if (streamer->hasFrameChanged())
            streamer->captureTo(image);
        return !image.isNull() && image.pixelColor(50, 40) == color;
    };
    QTRY_VERIFY(shows(Qt::red));
    QCOMPARE(image.size(), QSize(100, 60));
    QCOMPARE(image.pixel(5, 5), kBlack); // outside of the screen
    QTRY_VERIFY(!streamer->hasFrameChanged());
    window.paint(Qt::blue);
    QTRY_VERIFY(shows(Qt::blue));
    QTRY_VERIFY(KelWindowList::windowRects().contains(window.geometry()));
}

void ScreenWindowsTest::capturesPointer()
{
    ColorWindow window;
    window.setCursor(Qt::ArrowCursor);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    SetCursorPos(50, 40);
    const QRect rect(0, 0, 200, 100);
    QTRY_VERIFY(KelCursorPixmap::GetCursor(rect)->hasCursor());
    const auto arrow = KelCursorPixmap::GetCursor(rect);
    QCOMPARE(arrow->position(), QPoint(50, 40));
    QVERIFY(!arrow->pixmap().isNull());
    QCOMPARE(arrow->type().size(), 16);
    QCOMPARE(KelCursorPixmap::GetCursor(rect)->type(), arrow->type());
}

QTEST_MAIN(ScreenWindowsTest)
#include "tst_screen_windows.moc"
