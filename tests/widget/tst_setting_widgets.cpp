#include "support/TestTable.h"
#include "widget/ChoiceBox.h"
#include "widget/ColorSelectButton.h"
#include "widget/MiniSlider.h"
#include "widget/ToggleSwitch.h"

#include <QApplication>
#include <QColorDialog>
#include <QtTest>

class SettingWidgetsTest : public QObject
{
    Q_OBJECT

private slots:
    void sliderMovesToPressedPosition_data()
    {
        const TestTable<Qt::LayoutDirection, int, int> row("direction", "x", "value");
        // 200 pixels wide, with a margin of 9 pixels on either side.
        row("before the start", Qt::LeftToRight, 1, 50);
        row("middle", Qt::LeftToRight, 100, 100);
        row("quarter", Qt::LeftToRight, 55, 75);
        row("past the end", Qt::LeftToRight, 199, 150);
        row("mirrored", Qt::RightToLeft, 55, 125);
    }

    void sliderMovesToPressedPosition()
    {
        QFETCH(Qt::LayoutDirection, direction);
        QFETCH(int, x);
        MiniSlider slider;
        slider.setRange(50, 150);
        slider.setLayoutDirection(direction);
        slider.resize(200, 20);
        QTest::mousePress(&slider, Qt::LeftButton, {}, QPoint(x, 10));
        QTEST(slider.value(), "value");
        QVERIFY(slider.isSliderDown());
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, QPoint(x, 10));
        QVERIFY(!slider.isSliderDown());
    }

    void sliderDrags()
    {
        MiniSlider slider;
        slider.resize(200, 20);
        slider.setTracking(false);
        QSignalSpy changed(&slider, &QSlider::valueChanged);
        QTest::mousePress(&slider, Qt::LeftButton, {}, QPoint(9, 10));
        QMouseEvent move(QEvent::MouseMove, QPointF(191, 10), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(&slider, &move);
        QCOMPARE(slider.sliderPosition(), 99);
        QCOMPARE(slider.value(), 0);
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, QPoint(191, 10));
        QCOMPARE(slider.value(), 99);
        QCOMPARE(changed.size(), 1);
        QTest::keyClick(&slider, Qt::Key_Left);
        QCOMPARE(slider.value(), 98);
        QTest::mousePress(&slider, Qt::RightButton, {}, QPoint(9, 10));
        QCOMPARE(slider.value(), 98);
    }

    void switchShowsItsState()
    {
        ToggleSwitch toggle;
        toggle.show();
        const QImage off = toggle.grab().toImage();
        QTest::mouseClick(&toggle, Qt::LeftButton, {}, QPoint(toggle.width() - 2, 2));
        QVERIFY(toggle.isChecked());
        const QImage on = toggle.grab().toImage();
        QVERIFY(on != off);
        toggle.setLayoutDirection(Qt::RightToLeft);
        QVERIFY(toggle.grab().toImage() != on); // the knob is on the other side
        QTest::keyClick(&toggle, Qt::Key_Space);
        QVERIFY(!toggle.isChecked());
    }

    void choiceScrollsOnlyWithFocus()
    {
        QWidget window;
        ChoiceBox box(&window);
        QPushButton other(&window);
        box.addItems({"one", "two", "the longest of all"});
        QVERIFY(box.sizeHint().width() > box.fontMetrics().horizontalAdvance("the longest of all"));
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        const auto turnWheel = [&box] {
            QWheelEvent event({5, 5}, box.mapToGlobal({5, 5}), {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase,
                              false);
            QApplication::sendEvent(&box, &event);
            return event.isAccepted();
        };
        other.setFocus();
        QVERIFY(!turnWheel());
        QCOMPARE(box.currentIndex(), 0);
        box.setFocus();
        QVERIFY(turnWheel());
        QCOMPARE(box.currentIndex(), 1);
    }

    void colorDialog_data()
    {
        const TestTable<bool> row("isAccepted");
        row("accepted", true);
        row("canceled", false);
    }

    void colorDialog()
    {
        QFETCH(bool, isAccepted);
        const QColor before(10, 20, 30, 40);
        const QColor tried(200, 100, 50, 128);
        ColorSelectButton button;
        button.setColor(Qt::red);
        const auto pixel = [&button](int x) { return button.grab().toImage().pixelColor(x, button.height() / 2 - 1); };
        QCOMPARE(pixel(20), QColor(Qt::red));
        button.setColor(before);
        QVERIFY2(pixel(20) != pixel(24), "translucent colors are shown on checkers");
        QSignalSpy changed(&button, &ColorSelectButton::sigColorChanged);
        button.show();
        QTest::keyClick(&button, Qt::Key_Space);
        auto *const dialog = button.findChild<QColorDialog *>();
        QVERIFY(dialog);
        QCOMPARE(dialog->currentColor(), before);
        dialog->setCurrentColor(tried);
        QCOMPARE(button.color(), tried);
        isAccepted ? dialog->accept() : dialog->reject();
        QCOMPARE(button.color(), isAccepted ? tried : before);
        QVERIFY(!changed.isEmpty());
        QCOMPARE(changed.last().first().value<QColor>(), button.color());
    }
};

QTEST_MAIN(SettingWidgetsTest)
#include "tst_setting_widgets.moc"
