#include "ScriptedDesktop.h"
#include "support/TestTable.h"

#include <QBitmap>
#include <QTransform>
#include <QtTest>

using namespace kel;

namespace
{

constexpr QSize kScreenSize(60, 40);

int degreesOf(DXGI_MODE_ROTATION rotation)
{
    return 90 * (rotation - DXGI_MODE_ROTATION_IDENTITY);
}

/// A surface whose pixels differ from each other and from those of any other seed.
QImage surfaceOf(const QSize &size, int seed)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x, y, seed));
    }
    return image;
}

ScriptedFrame presented(const QImage &surface, const std::vector<RECT> &drawn = {{0, 0, 1, 1}})
{
    ScriptedFrame frame;
    frame.surface = surface;
    frame.drawn = drawn;
    return frame;
}

ScriptedFrame failing(HRESULT result)
{
    ScriptedFrame frame;
    frame.result = result;
    return frame;
}

} // namespace

/// The duplication reader with a scripted graphics system.
class ScreenDuplicationTest : public QObject
{
    Q_OBJECT

private slots:
    void rotatesAndPositions_data();
    void rotatesAndPositions();
    void joinsScreens();
    void recoversFromLosses_data();
    void recoversFromLosses();
    void followsAddedAndRemovedScreens();
};

void ScreenDuplicationTest::rotatesAndPositions_data()
{
    QTest::addColumn<int>("rotation");
    QTest::addColumn<QRect>("rect");
    for (int rotation = DXGI_MODE_ROTATION_IDENTITY; rotation <= DXGI_MODE_ROTATION_ROTATE270; ++rotation) {
        QTest::addRow("%d, inside", degreesOf(DXGI_MODE_ROTATION(rotation))) << rotation << QRect(-90, 15, 20, 10);
        QTest::addRow("%d, beyond", degreesOf(DXGI_MODE_ROTATION(rotation))) << rotation << QRect(-110, 0, 200, 90);
    }
}

/// Only areas that Windows reports as drawn or moved are copied, from their position on the surface to that on the
/// screen.
void ScreenDuplicationTest::rotatesAndPositions()
{
    QFETCH(int, rotation);
    QFETCH(QRect, rect);
    const int degrees = degreesOf(DXGI_MODE_ROTATION(rotation));
    const QTransform transform = QTransform().rotate(degrees);
    const QSize surface = degrees % 180 == 0 ? kScreenSize : kScreenSize.transposed();
    const QRect place(QPoint(-100, 10), kScreenSize);
    ScriptedDesktop desktop;
    desktop.screens.push_back({place, DXGI_MODE_ROTATION(rotation), {}});
    std::deque<ScriptedFrame> &frames = desktop.screens[0].frames;

    const QImage before = surfaceOf(surface, 1), after = surfaceOf(surface, 2);
    frames.push_back(presented(before));
    ScriptedFrame change = presented(after, {{11, 8, 18, 20}});
    change.moved.push_back({{0, 0}, {20, 15, 24, 19}});
    frames.push_back(change);
    ScriptedFrame pointer;
    pointer.isPresented = false;
    frames.push_back(pointer);
    ScriptedFrame undescribed = presented(before);
    undescribed.isDescribed = false;
    frames.push_back(undescribed);

    // The expected image for a surface.
    const auto view = [&](const QImage &on) {
        QImage image(rect.size(), QImage::Format_RGB32);
        image.fill(Qt::black);
        const QImage screen = on.transformed(transform);
        for (int y = 0; y < rect.height(); ++y) {
            for (int x = 0; x < rect.width(); ++x) {
                if (place.contains(rect.topLeft() + QPoint(x, y)))
                    image.setPixel(x, y, screen.pixel(rect.topLeft() + QPoint(x, y) - place.topLeft()));
            }
        }
        return image;
    };
    DuplicationDesktopReader reader(rect, desktop.system());
    DesktopReader::Update update = reader.update();
    QCOMPARE(int(update.state), int(DesktopReader::State::Ready));
    QCOMPARE(update.changed, QRegion(QRect(QPoint(), rect.size())));
    QCOMPARE(reader.image(), view(before));

    update = reader.update();
    QImage drawn(surface, QImage::Format_RGB32);
    drawn.fill(Qt::black);
    QImage mixed = before;
    for (const QRect &one : {QRect(11, 8, 7, 12), QRect(20, 15, 4, 4)}) {
        for (int y = one.top(); y <= one.bottom(); ++y) {
            for (int x = one.left(); x <= one.right(); ++x) {
                mixed.setPixel(x, y, after.pixel(x, y));
                drawn.setPixel(x, y, qRgb(255, 255, 255));
            }
        }
    }
    QCOMPARE(reader.image(), view(mixed));
    const QImage mask = view(drawn).createMaskFromColor(qRgb(255, 255, 255), Qt::MaskOutColor);
    QVERIFY(update.changed.xored(QRegion(QBitmap::fromImage(mask))).isEmpty());

    QVERIFY(reader.update().changed.isEmpty()); // only the pointer moved
    QCOMPARE(reader.update().changed.boundingRect(), rect.intersected(place).translated(-rect.topLeft()));
    QCOMPARE(reader.image(), view(before));
    QVERIFY(reader.update().changed.isEmpty()); // no frame at all
}

void ScreenDuplicationTest::joinsScreens()
{
    ScriptedDesktop desktop;
    const QImage left = surfaceOf(kScreenSize, 1), right = surfaceOf(kScreenSize.transposed(), 2);
    desktop.screens.push_back({QRect(QPoint(0, 0), kScreenSize), DXGI_MODE_ROTATION_IDENTITY, {presented(left)}});
    desktop.screens.push_back({QRect(QPoint(60, 0), kScreenSize), DXGI_MODE_ROTATION_ROTATE90, {}});
    DuplicationDesktopReader reader({50, 10, 20, 20}, desktop.system());
    QCOMPARE(int(reader.update().state), int(DesktopReader::State::NotNow)); // one has no frame yet
    desktop.screens[1].frames.push_back(presented(right));
    QCOMPARE(int(reader.update().state), int(DesktopReader::State::Ready));
    QCOMPARE(reader.image().copy(0, 0, 10, 20), left.copy(50, 10, 10, 20));
    QCOMPARE(reader.image().copy(10, 0, 10, 20), right.transformed(QTransform().rotate(90)).copy(0, 10, 10, 20));
}

void ScreenDuplicationTest::recoversFromLosses_data()
{
    // The result of the next frame, and that of all access requests after it, for a number of updates.
    const TestTable<bool, HRESULT, HRESULT, int, bool> row("hasImage", "loss", "refusal", "updates", "isPermanent");
    const HRESULT lost = DXGI_ERROR_ACCESS_LOST, denied = E_ACCESSDENIED, unsupported = DXGI_ERROR_UNSUPPORTED;
    row("consent prompt", true, lost, denied, 5, false);
    row("locked for long", true, lost, denied, 1000, false);
    row("mode change", true, lost, DXGI_ERROR_MODE_CHANGE_IN_PROGRESS, 20, false);
    row("driver restart", true, DXGI_ERROR_DEVICE_REMOVED, DXGI_ERROR_DEVICE_RESET, 20, false);
    row("remote desktop disconnected", true, lost, DXGI_ERROR_SESSION_DISCONNECTED, 1000, false);
    row("locked from the start", false, lost, denied, 20, false);
    row("never granted", false, lost, denied, 60, true);
    row("not supported", false, unsupported, unsupported, 1, true);
    row("no longer possible", true, lost, unsupported, 60, true);
}

/// The last image stays while another desktop has the screen, and is reported as completely changed afterwards.
void ScreenDuplicationTest::recoversFromLosses()
{
    QFETCH(bool, hasImage);
    QFETCH(HRESULT, loss);
    QFETCH(HRESULT, refusal);
    QFETCH(int, updates);
    QFETCH(bool, isPermanent);
    ScriptedDesktop desktop;
    desktop.screens.push_back({QRect(QPoint(), kScreenSize), DXGI_MODE_ROTATION_IDENTITY, {}});
    ScriptedScreen &screen = desktop.screens[0];
    const QImage before = surfaceOf(kScreenSize, 1), after = surfaceOf(kScreenSize, 2);
    DuplicationDesktopReader reader(screen.place, desktop.system());
    if (hasImage) {
        screen.frames.push_back(presented(before));
        QCOMPARE(int(reader.update().state), int(DesktopReader::State::Ready));
    }
    screen.frames.push_back(failing(loss));
    screen.access = hasImage ? S_OK : refusal;
    bool isUnusable = false;
    for (int i = 0; i < updates && !isUnusable; ++i) {
        const DesktopReader::State state = reader.update().state;
        QVERIFY(state != DesktopReader::State::Ready);
        isUnusable = state == DesktopReader::State::Unusable;
        screen.access = refusal;
        if (hasImage)
            QCOMPARE(reader.image(), before);
    }
    QCOMPARE(isUnusable, isPermanent);
    if (isPermanent)
        return;
    QVERIFY(screen.accessRequests <= updates / 5 + 20); // requests are expensive
    screen.access = S_OK;
    screen.frames = {presented(after)};
    DesktopReader::Update update;
    for (int i = 0; i < 20 && update.state != DesktopReader::State::Ready; ++i)
        update = reader.update();
    QCOMPARE(update.changed, QRegion(screen.place));
    QCOMPARE(reader.image(), after);
}

void ScreenDuplicationTest::followsAddedAndRemovedScreens()
{
    ScriptedDesktop desktop;
    const QImage first = surfaceOf(kScreenSize, 1), second = surfaceOf(kScreenSize, 2);
    desktop.screens.push_back({QRect(QPoint(0, 0), kScreenSize), DXGI_MODE_ROTATION_IDENTITY, {presented(first)}});
    DuplicationDesktopReader reader({0, 0, 120, 40}, desktop.system());
    QCOMPARE(int(reader.update().state), int(DesktopReader::State::Ready));
    QCOMPARE(reader.image().copy(60, 0, 60, 40).pixel(5, 5), qRgb(0, 0, 0));

    // A screen is added.
    desktop.isCurrent = false;
    desktop.screens[0].frames.push_back(presented(first));
    desktop.screens.push_back({QRect(QPoint(60, 0), kScreenSize), DXGI_MODE_ROTATION_IDENTITY, {presented(second)}});
    QCOMPARE(reader.update().changed, QRegion(0, 0, 120, 40));
    QCOMPARE(reader.image().copy(60, 0, 60, 40), second);

    // Both are removed: the last image stays until one is back.
    desktop.isCurrent = false;
    const std::deque<ScriptedScreen> kept = desktop.screens;
    desktop.screens.clear();
    for (int i = 0; i < 1000; ++i)
        QCOMPARE(int(reader.update().state), int(DesktopReader::State::NotNow));
    QCOMPARE(reader.image().copy(60, 0, 60, 40), second);
    desktop.screens.push_back(kept[1]);
    desktop.screens[0].frames.push_back(presented(first));
    DesktopReader::Update update;
    for (int i = 0; i < 20 && update.state != DesktopReader::State::Ready; ++i)
        update = reader.update();
    QCOMPARE(reader.image().copy(60, 0, 60, 40), first);
    QCOMPARE(reader.image().pixel(5, 5), qRgb(0, 0, 0));
}

QTEST_MAIN(ScreenDuplicationTest)
#include "tst_screen_duplication.moc"
