#include "kelmovie/support/SavingConfigIO.h"

#include "style/KelStyleTheme.h"
#include "support/TestTable.h"
#include "widget/FloatPanel.h"

#include <KelMovie/KelPlayCtrlWidget.h>
#include <KelMovie/KelPlayTimeLable.h>
#include <KelMovie/KelRecordButton.h>
#include <KelMovie/KelRecordFpsLabel.h>
#include <KelMovie/KelRecordPauseButton.h>
#include <KelMovie/KelRecordTimeLable.h>
#include <KelMovie/PlayPauseButton.h>
#include <KelMovie/PlayProgressBar.h>
#include <KelMovie/PlaySpeedLabel.h>

#include <QListWidget>
#include <QtTest>

namespace
{

QStringList texts(const QListWidget *list)
{
    QStringList result;
    for (int row = 0; row < list->count(); ++row)
        result << list->item(row)->text();
    return result;
}

QListWidget *openList(LabelWidthFloatPanel *label)
{
    label->show();
    QTest::mouseClick(label, Qt::LeftButton);
    return label->panel()->isVisible() ? label->panel()->findChild<QListWidget *>() : nullptr;
}

void clickRow(QListWidget *list, int row)
{
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(row)).center());
}

} // namespace

class MovieControlsTest : public QObject
{
    Q_OBJECT

private slots:
    void buttons_data();
    void buttons();
    void playTimes_data();
    void playTimes();
    void controlBar();
    void speed();
    void recordTimes_data();
    void recordTimes();
    void recordTimeIsUpdatedOncePerSecond();
    void delay();
    void frameRate();
    void frameRateWithoutAStore();
    void listsFitTheirRows();
    void everyControlHasToolTipAndName();
};

namespace
{

/// The interface that the three button classes have in common.
struct TwoGlyphs {
    std::shared_ptr<QPushButton> button;
    std::function<bool()> state;
    std::function<void(bool)> setState;
    std::shared_ptr<QVector<bool>> changes;
    QString off;
    QString on;
    bool otherTextIsOn;
};

template <typename Button>
TwoGlyphs twoGlyphs(bool (Button::*state)() const, void (Button::*setState)(bool), void (Button::*changed)(bool),
                    char16_t off, char16_t on, bool otherTextIsOn)
{
    const auto button = std::make_shared<Button>();
    const auto changes = std::make_shared<QVector<bool>>();
    QObject::connect(button.get(), changed, button.get(), [changes](bool is) { changes->append(is); });
    return {button,
            [button, state] { return (button.get()->*state)(); },
            [button, setState](bool is) { (button.get()->*setState)(is); },
            changes,
            QString(QChar(off)),
            QString(QChar(on)),
            otherTextIsOn};
}

} // namespace

Q_DECLARE_METATYPE(TwoGlyphs)

void MovieControlsTest::buttons_data()
{
    const TestTable<TwoGlyphs, QString> row("glyphs", "name");
    row("play",
        twoGlyphs(&PlayPauseButton::isPlay, &PlayPauseButton::setPlay, &PlayPauseButton::sigPlay, 0xe624, 0xe622,
                  false),
        "PlayPauseButton");
    row("record",
        twoGlyphs(&KelRecordButton::isRecording, &KelRecordButton::setRecording,
                  &KelRecordButton::sigRecordStateChanged, 0xe62f, 0xe692, true),
        "PlayPauseButton");
    row("pause",
        twoGlyphs(&KelRecordPauseButton::isPause, &KelRecordPauseButton::setPause,
                  &KelRecordPauseButton::sigPauseStateChanged, 0xe622, 0xe624, true),
        "KelRecordPauseButton");
}

void MovieControlsTest::buttons()
{
    QFETCH(TwoGlyphs, glyphs);
    QPushButton *const button = glyphs.button.get();
    QTEST(button->objectName(), "name");
    QVERIFY(!glyphs.state());
    QCOMPARE(button->text(), glyphs.off);
    const QString offAction = button->toolTip();

    glyphs.setState(true);
    glyphs.setState(true);
    QCOMPARE(button->text(), glyphs.on);
    QVERIFY(glyphs.state());
    QVERIFY(glyphs.changes->isEmpty());
    QVERIFY(button->toolTip() != offAction);
    QCOMPARE(button->accessibleName(), button->toolTip());

    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(button->text(), glyphs.off);
    QTest::keyClick(button, Qt::Key_Space);
    QCOMPARE(button->text(), glyphs.on);
    QCOMPARE(*glyphs.changes, (QVector<bool>{false, true}));

    button->setText("?");
    QCOMPARE(glyphs.state(), glyphs.otherTextIsOn);
}

void MovieControlsTest::playTimes_data()
{
    const TestTable<qint64, qint64, QString, QString> row("playTime", "duration", "rounded", "truncated");
    row("half a second", qint64(59500), qint64(125499), "01:00/02:05", "00:59/02:05");
    row("below half", qint64(59499), qint64(125500), "00:59/02:06", "00:59/02:05");
    row("no length", qint64(1000), qint64(0), "00:01/00:00", "00:01");
    row("hours", qint64(3600000), qint64(6000000), "60:00/100:00", "60:00/100:00");
}

void MovieControlsTest::playTimes()
{
    QFETCH(qint64, playTime);
    QFETCH(qint64, duration);
    KelPlayCtrlWidget controls;
    KelPlayTimeLable label;
    auto *const time = controls.findChild<QLabel *>("playTimeLabel");
    QCOMPARE(time->text(), QString("00:00/00:00"));
    controls.setDuration(duration);
    label.setDuration(duration);
    controls.setPlayTime(playTime);
    label.setPlayTime(playTime);
    QTEST(time->text(), "rounded");
    QTEST(label.text(), "truncated");
}

void MovieControlsTest::controlBar()
{
    KelPlayCtrlWidget controls;
    auto *const bar = controls.findChild<PlayProgressBar *>();
    auto *const button = controls.findChild<PlayPauseButton *>();
    controls.setDuration(1000);
    controls.resize(1000, 80);
    controls.show();
    const double scale = KelStyleTheme::scaleOf(&controls);
    QCOMPARE(bar->height(), int(std::ceil(qRound(12 * scale) * 1.5))); // from the style sheet
    QVERIFY(bar->playedColor() != Qt::red);
    QCOMPARE(button->palette().color(QPalette::ButtonText), QColor("#e13d30"));

    QSignalSpy times(&controls, &KelPlayCtrlWidget::sigPlayTimeChanged);
    QSignalSpy ranges(&controls, &KelPlayCtrlWidget::sigPlayRangeChanged);
    QSignalSpy plays(&controls, &KelPlayCtrlWidget::sigPlayPause);
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->rect().center());
    QVERIFY(std::abs(times.value(0).value(0).toInt() - 500) <= 2);
    QTest::keyClick(bar, Qt::Key_O);
    QCOMPARE(ranges.value(0).value(1).toInt(), bar->rangeEndMs());
    QCOMPARE(ranges.value(0).value(2).toInt(), 1);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(plays, QList<QVariantList>{{true}});
    controls.setPlayButtonState(false);
    QVERIFY(!button->isPlay());
    QCOMPARE(plays.size(), 1);
}

void MovieControlsTest::speed()
{
    PlaySpeedLabel label;
    QCOMPARE(label.objectName(), QString("PlaySpeedLabel"));
    QCOMPARE(label.text(), QString("1.0X"));
    QSignalSpy changed(&label, &PlaySpeedLabel::sigSpeedChanged);
    QListWidget *list = openList(&label);
    QVERIFY(list);
    QCOMPARE(texts(list), QStringList({"0.2X", "0.5X", "0.8X", "1.0X", "1.2X", "1.5X", "1.8X", "2.0X"}));
    QCOMPARE(list->currentRow(), 3);
    clickRow(list, 5);
    QCOMPARE(changed, QList<QVariantList>{{1.5}});
    QCOMPARE(label.getSpeed(), 1.5);
    QVERIFY(!label.panel()->isVisible());

    list = openList(&label);
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Return);
    QCOMPARE(label.text(), QString("1.8X"));
    QCOMPARE(changed.size(), 2);
    label.setSpeed(0.2);
    QCOMPARE(changed.size(), 2);
}

void MovieControlsTest::recordTimes_data()
{
    const TestTable<bool, int, qint64, QString> row("isRecording", "delay", "ms", "text");
    row("no delay", false, 0, qint64(9000), "00:00");
    row("delay", false, 3, qint64(9000), "-0:03");
    row("longest delay", false, 10, qint64(0), "-0:10");
    row("counting down", true, 3, qint64(-5000), "-0:05");
    row("recording", true, 3, qint64(65000), "01:05");
    row("an hour", true, 0, qint64(3600000), "60:00");
}

void MovieControlsTest::recordTimes()
{
    QFETCH(bool, isRecording);
    QFETCH(int, delay);
    QFETCH(qint64, ms);
    SavingConfigIO io;
    gKelMovieConfig.recordDelay = delay;
    KelRecordTimeLable label;
    label.setIsRecording(isRecording);
    label.setRecordTime(ms);
    QTEST(label.text(), "text");
    QCOMPARE(openList(&label) == nullptr, isRecording);
}

void MovieControlsTest::recordTimeIsUpdatedOncePerSecond()
{
    KelRecordTimeLable label;
    label.setIsRecording(true);
    label.setRecordTime(5000);
    label.setText("untouched");
    label.setRecordTime(5999);
    QCOMPARE(label.text(), QString("untouched"));
    label.setRecordTime(6000);
    QCOMPARE(label.text(), QString("00:06"));
}

void MovieControlsTest::delay()
{
    SavingConfigIO io;
    KelRecordTimeLable label;
    QListWidget *const list = openList(&label);
    QVERIFY(list);
    QCOMPARE(label.panel()->findChild<QLabel *>("DescLabel")->text(), QString("Record delay"));
    QCOMPARE(texts(list), QStringList({"No delay", "-1s", "-2s", "-3s", "-5s", "-10s"}));
    QCOMPARE(list->currentRow(), 0);
    clickRow(list, 5);
    QCOMPARE(io.saved, (QMap<QString, QVariant>{{"KelMovie.record.delay", 10}}));
    QCOMPARE(label.text(), QString("-0:10"));
    QVERIFY(!label.panel()->isVisible());
}

void MovieControlsTest::frameRate()
{
    SavingConfigIO io;
    gKelMovieConfig.recordFps = 30;
    KelRecordFpsLabel label;
    QCOMPARE(label.text(), QString("30FPS"));
    QListWidget *const list = openList(&label);
    QVERIFY(list);
    QCOMPARE(texts(list), QStringList({"5FPS", "16FPS", "24FPS", "60FPS"}));
    QVERIFY(list->selectedItems().isEmpty());
    QTest::keyClick(list, Qt::Key_Return);
    QVERIFY(io.saved.isEmpty());
    clickRow(list, 3);
    QCOMPARE(io.saved, (QMap<QString, QVariant>{{"KelMovie.record.fps", 60}}));
    QCOMPARE(label.text(), QString("60FPS"));
    QVERIFY(!label.panel()->isVisible());
}

void MovieControlsTest::frameRateWithoutAStore()
{
    KelRecordFpsLabel label;
    clickRow(openList(&label), 0);
    QCOMPARE(label.text(), QString("5FPS"));
    gKelMovieConfig.recordFps = 24;
}

void MovieControlsTest::listsFitTheirRows()
{
    KelRecordTimeLable time;
    KelRecordFpsLabel fps;
    PlaySpeedLabel speed;
    for (LabelWidthFloatPanel *const label :
         {static_cast<LabelWidthFloatPanel *>(&time), static_cast<LabelWidthFloatPanel *>(&fps),
          static_cast<LabelWidthFloatPanel *>(&speed)}) {
        const QListWidget *const list = openList(label);
        QVERIFY(list);
        QVERIFY(list->viewport()->rect().contains(list->visualItemRect(list->item(0))));
        QVERIFY(list->viewport()->rect().contains(list->visualItemRect(list->item(list->count() - 1))));
        QVERIFY(label->panel()->rect().contains(list->geometry()));
        label->panel()->hideManual();
    }
}

void MovieControlsTest::everyControlHasToolTipAndName()
{
    KelPlayCtrlWidget controls;
    KelPlayTimeLable played;
    KelRecordTimeLable recorded;
    KelRecordFpsLabel fps;
    PlaySpeedLabel speed;
    for (const QWidget *const control :
         {static_cast<QWidget *>(controls.findChild<PlayProgressBar *>()),
          static_cast<QWidget *>(controls.findChild<PlayPauseButton *>()),
          static_cast<QWidget *>(controls.findChild<QLabel *>("playTimeLabel")), static_cast<QWidget *>(&played),
          static_cast<QWidget *>(&recorded), static_cast<QWidget *>(&fps), static_cast<QWidget *>(&speed)}) {
        QVERIFY2(!control->toolTip().isEmpty(), control->metaObject()->className());
        QVERIFY2(!control->accessibleName().isEmpty(), control->metaObject()->className());
        const bool isPlainLabel = qstrcmp(control->metaObject()->className(), "QLabel") == 0 || control == &played;
        QVERIFY2(isPlainLabel || control->focusPolicy() & Qt::TabFocus, control->metaObject()->className());
    }
}

QTEST_MAIN(MovieControlsTest)
#include "tst_movie_controls.moc"
