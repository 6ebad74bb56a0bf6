#include "area/AreaOverlay.h"
#include "area/AreaPicker.h"
#include "recorder/ToolbarPlacement.h"
#include "support/TestTable.h"

#include <QApplication>
#include <QPointer>
#include <QSignalSpy>
#include <QWindow>
#include <QtTest>

namespace
{

constexpr QPoint kNowhere(-9999, -9999);

QPoint point(const QString &text)
{
    return {text.section(',', 0, 0).toInt(), text.section(',', 1, 1).toInt()};
}

AreaOverlay *overlay()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *const found = qobject_cast<AreaOverlay *>(widget);
        if (found && found->isVisible())
            return found;
    }
    return nullptr;
}

/// "click 10,20", "drag 10,20 30,40", ... or key sequences: "Ctrl+Left Down".
void act(QWindow *window, const QString &steps)
{
    const QStringList words = steps.split(' ', Qt::SkipEmptyParts);
    const QPoint from = point(words.value(1));
    const QPoint to = point(words.value(2));
    if (steps.startsWith("drag")) {
        QTest::mouseMove(window, from);
        QTest::mousePress(window, Qt::LeftButton, {}, from);
        QTest::mouseMove(window, to + QPoint(7, 3)); // not on a straight line
        QTest::mouseMove(window, to);
        QTest::mouseRelease(window, Qt::LeftButton, {}, to);
    } else if (steps.startsWith("point")) {
        QTest::mouseMove(window, from);
    } else if (steps.startsWith("click")) {
        QTest::mouseMove(window, from);
        QTest::mouseClick(window, Qt::LeftButton, {}, from);
    } else if (steps.startsWith("right")) {
        QTest::mousePress(window, Qt::RightButton, {}, from);
    } else if (steps.startsWith("double")) {
        QTest::mouseDClick(window, Qt::LeftButton, {}, from);
    } else {
        for (const QString &word : words) {
            const int keys = QKeySequence(word)[0];
            QTest::keyPress(window, Qt::Key(keys & ~int(Qt::KeyboardModifierMask)),
                            Qt::KeyboardModifiers(keys & int(Qt::KeyboardModifierMask)));
        }
    }
}

} // namespace

/// Choosing an area by mouse and keyboard events on the overlays, and placing the toolbar. Qt's offscreen screen has
/// 800x600 pixels.
class AreaPickerTest : public QObject
{
    Q_OBJECT

private slots:
    void picks_data()
    {
        const TestTable<QRect, QString, QRect> row("area", "steps", "picked");
        const QRect none;
        const QRect area(200, 200, 300, 200);

        row("draw", none, "drag 100,120 299,219", QRect(100, 120, 200, 100));
        row("draw from the lower right", none, "drag 299,219 100,120", QRect(100, 120, 200, 100));
        row("draw a new area beside the last one", area, "drag 20,20 119,69", QRect(20, 20, 100, 50));
        row("draw beyond the edge of the screen", none, "drag 700,500 900,700", QRect(700, 500, 100, 100));
        row("a tiny drag is ignored", area, "drag 20,20 25,25", area);
        row("last area", area, "", area);
        row("last area of a larger screen", QRect(700, 500, 300, 300), "", QRect(700, 500, 100, 100));
        row("move", area, "drag 350,300 360,280", QRect(210, 180, 300, 200));
        row("move to the edge of the screen", area, "drag 350,300 799,0", QRect(500, 0, 300, 200));
        row("move to the other edge", area, "drag 350,300 0,599", QRect(0, 400, 300, 200));
        row("left", area, "drag 200,300 180,310", QRect(180, 200, 320, 200));
        row("right", area, "drag 499,300 519,310", QRect(200, 200, 320, 200));
        row("top", area, "drag 350,200 340,190", QRect(200, 190, 300, 210));
        row("bottom", area, "drag 350,399 340,409", QRect(200, 200, 300, 210));
        row("top left", area, "drag 200,200 190,180", QRect(190, 180, 310, 220));
        row("top right", area, "drag 499,200 509,180", QRect(200, 180, 310, 220));
        row("bottom right", area, "drag 499,399 509,419", QRect(200, 200, 310, 220));
        row("bottom left", area, "drag 200,399 190,419", QRect(190, 200, 310, 220));
        row("an edge, pressed outside of it", area, "drag 195,300 175,300", QRect(180, 200, 320, 200));
        row("an edge beyond the screen", area, "drag 204,300 0,300", QRect(0, 200, 500, 200));
        row("the opposite edge beyond the screen", area, "drag 495,300 799,300", QRect(200, 200, 600, 200));
        row("an edge across the opposite one", area, "drag 200,300 600,300", QRect(500, 200, 100, 200));
        row("minimum width", area, "drag 200,300 498,300", QRect(484, 200, 16, 200));
        row("minimum width, no room before", QRect(0, 200, 20, 200), "drag 19,300 2,300", QRect(0, 200, 16, 200));
        row("minimum width, just enough room before", QRect(16, 200, 40, 200), "drag 55,300 14,300",
            QRect(0, 200, 16, 200));
        row("arrows", area, "Right Down Down Left Left", QRect(199, 202, 300, 200));
        row("arrows with Shift", area, "Shift+Left Shift+Up", QRect(190, 190, 300, 200));
        row("arrows with Ctrl", area, "Ctrl+Right Ctrl+Up", QRect(200, 200, 301, 199));
        row("arrows with both", area, "Ctrl+Shift+Left Ctrl+Shift+Down", QRect(200, 200, 290, 210));
        row("smallest and largest size", QRect(100, 580, 20, 18), "Ctrl+Shift+Left Ctrl+Shift+Down",
            QRect(100, 580, 16, 20));
        row("arrows at the edge", QRect(5, 5, 100, 100), "Shift+Left Shift+Up", QRect(0, 0, 100, 100));
        row("whole screen", none, "Ctrl+A", QRect(0, 0, 800, 600));
        row("a window", none, "click 640,120", QRect(600, 100, 150, 100));
        row("the topmost of two windows", none, "click 610,110", QRect(600, 100, 40, 20));
        row("a window under the pointer", none, "point 640,120", QRect(600, 100, 150, 100));
        row("a click within the area selects no window", QRect(550, 50, 240, 240), "click 640,120",
            QRect(550, 50, 240, 240));
        row("a window partly off the screen", none, "click 20,580", QRect(0, 560, 50, 40));
        row("nothing to accept", none, "point 400,550", none);
        row("double click", area, "double 300,300", area);
        row("Escape", area, "Escape", none);
        row("right click", area, "right 300,300", none);
    }

    void picks()
    {
        QFETCH(QRect, area);
        QFETCH(QString, steps);
        QFETCH(QRect, picked);
        AreaPicker picker;
        QSignalSpy picks(&picker, &AreaPicker::picked);
        QSignalSpy cancels(&picker, &AreaPicker::cancelled);
        picker.open(area, {{600, 100, 40, 20}, {600, 100, 150, 100}, {-50, 560, 100, 100}});
        QVERIFY(overlay());
        const QPointer<QWindow> window = overlay()->windowHandle();
        act(window, steps);
        if (picker.isOpen())
            act(window, "Return");
        QCOMPARE(picks.value(0).value(0).toRect(), picked);
        QCOMPARE(picks.size(), picked.isEmpty() ? 0 : 1);
        QCOMPARE(cancels.size(), steps == "Escape" || steps.startsWith("right") ? 1 : 0);
        QVERIFY(picked.isEmpty() || (!picker.isOpen() && !overlay()));
    }

    void toolbarPlacement_data()
    {
        const TestTable<QRect, int, QPoint> row("area", "screens", "place");
        row("below", QRect(300, 200, 400, 300), 1, QPoint(300, 512));
        row("above", QRect(300, 200, 400, 600), 1, QPoint(300, 148));
        row("right", QRect(0, 0, 500, 800), 1, QPoint(512, 380));
        row("left", QRect(500, 0, 500, 800), 1, QPoint(88, 380));
        row("clamped to the screen", QRect(0, 200, 100, 100), 1, QPoint(0, 312));
        row("clamped to its right edge", QRect(900, 200, 100, 100), 1, QPoint(600, 312));
        row("nowhere", QRect(0, 0, 1000, 800), 1, kNowhere);
        row("on the other screen", QRect(0, 0, 1000, 800), 2, QPoint(1012, 380));
        row("on the screen with most of the area", QRect(900, 200, 400, 300), 2, QPoint(1000, 512));
    }

    void toolbarPlacement()
    {
        QFETCH(QRect, area);
        QFETCH(int, screens);
        const QVector<QRect> all{{0, 0, 1000, 800}, {1000, 0, 1000, 800}};
        QTEST(ToolbarPlacement::beside(area, QSize(400, 40), all.mid(0, screens)).value_or(kNowhere), "place");
    }
};

QTEST_MAIN(AreaPickerTest)
#include "tst_area_picker.moc"
