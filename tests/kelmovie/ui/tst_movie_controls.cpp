#include "kelmovie/support/SavingConfigIO.h"

#include "style/KelStyleTheme.h"
#include "support/Controls.h"
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
#include <QVBoxLayout>
#include <QtTest>

#include <optional>

namespace
{

/// Clicks the label and returns the list of its panel; null if the panel does not open.
QListWidget *openList(LabelWidthFloatPanel *label)
{
    label->show();
    QTest::mouseClick(label, Qt::LeftButton);
    return label->panel()->isVisible() ? label->panel()->findChild<QListWidget *>() : nullptr;
}

template <typename Label>
LabelWidthFloatPanel *create()
{
    return new Label;
}

} // namespace

using LabelFactory = LabelWidthFloatPanel *(*)();
Q_DECLARE_METATYPE(LabelFactory)

class MovieControlsTest : public QObject
{
    Q_OBJECT

private slots:
    void playButton()
    {
        using Button = PlayPauseButton;
        checkButton("PlayPauseButton", &Button::isPlay, &Button::setPlay, &Button::sigPlay, 0xe624, 0xe622, false);
    }

    void recordButton()
    {
        using Button = KelRecordButton;
        checkButton("PlayPauseButton", &Button::isRecording, &Button::setRecording, &Button::sigRecordStateChanged,
                    0xe62f, 0xe692, true);
    }

    void pauseButton()
    {
        using Button = KelRecordPauseButton;
        checkButton("KelRecordPauseButton", &Button::isPause, &Button::setPause, &Button::sigPauseStateChanged, 0xe622,
                    0xe624, true);
    }

    void playTimes_data()
    {
        const TestTable<qint64, qint64, QString, QString> row("playTime", "duration", "rounded", "truncated");
        row("half a second", qint64(59500), qint64(125499), "01:00/02:05", "00:59/02:05");
        row("below half", qint64(59499), qint64(125500), "00:59/02:06", "00:59/02:05");
        row("no length", qint64(1000), qint64(0), "00:01/00:00", "00:01");
        row("hours", qint64(3600000), qint64(6000000), "60:00/100:00", "60:00/100:00");
    }

    void playTimes()
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

    void controlBar()
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

    void choices_data()
    {
        const TestTable<LabelFactory, QString, int, int, QString, QVariant> row("label", "texts", "current", "clicked",
                                                                                "text", "value");
        row("speed", create<PlaySpeedLabel>, "0.2X 0.5X 0.8X 1.0X 1.2X 1.5X 1.8X 2.0X", 3, 5, "1.5X", 1.5);
        row("delay", create<KelRecordTimeLable>, "No delay -1s -2s -3s -5s -10s", 0, 5, "-0:10", 10);
        row("frame rate", create<KelRecordFpsLabel>, "5FPS 16FPS 24FPS 60FPS", 2, 3, "60FPS", 60);
    }

    void choices()
    {
        QFETCH(LabelFactory, label);
        QFETCH(int, clicked);
        QFETCH(QString, text);
        QFETCH(QVariant, value);
        for (const bool hasStore : {true, false}) {
            std::optional<SavingConfigIO> io(std::in_place);
            const std::unique_ptr<LabelWidthFloatPanel> control(label());
            if (!hasStore)
                io.reset();
            std::optional<QSignalSpy> speeds;
            if (auto *const speed = qobject_cast<PlaySpeedLabel *>(control.get()))
                speeds.emplace(speed, &PlaySpeedLabel::sigSpeedChanged);
            const QListWidget *const list = openList(control.get());
            QVERIFY(list);
            QStringList texts;
            for (int row = 0; row < list->count(); ++row) {
                texts += list->item(row)->text();
                QVERIFY2(list->viewport()->rect().contains(list->visualItemRect(list->item(row))), "a row is cut off");
            }
            QTEST(texts.join(' '), "texts");
            QVERIFY(control->panel()->rect().contains(list->geometry()));
            QTEST(list->currentRow(), "current");
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(clicked)).center());
            QVERIFY(!control->panel()->isVisible());
            QCOMPARE(control->text(), text);
            if (speeds)
                QCOMPARE(*speeds, QList<QVariantList>{{value}});
            else if (hasStore)
                QCOMPARE(io->saved.values(), QList<QVariant>{value});
            gKelMovieConfig = KelMovieConfig();
        }
    }

    void choosesSpeedByKeys()
    {
        PlaySpeedLabel label;
        QCOMPARE(label.objectName(), QString("PlaySpeedLabel"));
        label.setSpeed(1.5);
        QSignalSpy changed(&label, &PlaySpeedLabel::sigSpeedChanged);
        QListWidget *const list = openList(&label);
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(list, Qt::Key_Return);
        QCOMPARE(label.text(), QString("1.8X"));
        QCOMPARE(changed, QList<QVariantList>{{1.8}});
        QCOMPARE(label.getSpeed(), 1.8);
    }

    /// No row is selected, and Enter does not choose the first one.
    void unknownFrameRate()
    {
        SavingConfigIO io;
        gKelMovieConfig.recordFps = 30;
        KelRecordFpsLabel label;
        QCOMPARE(label.text(), QString("30FPS"));
        QListWidget *const list = openList(&label);
        QVERIFY(list->selectedItems().isEmpty());
        QTest::keyClick(list, Qt::Key_Return);
        QVERIFY(io.saved.isEmpty());
    }

    void recordTimes_data()
    {
        const TestTable<bool, int, qint64, QString> row("isRecording", "delay", "ms", "text");
        row("no delay", false, 0, qint64(9000), "00:00");
        row("delay", false, 3, qint64(9000), "-0:03");
        row("longest delay", false, 10, qint64(0), "-0:10");
        row("counting down", true, 3, qint64(-5000), "-0:05");
        row("recording", true, 3, qint64(65000), "01:05");
        row("an hour", true, 0, qint64(3600000), "60:00");
    }

    void recordTimes()
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

    void recordTimeIsUpdatedOncePerSecond()
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

    void controlsAreAccessible()
    {
        QWidget window;
        auto *const layout = new QVBoxLayout(&window);
        auto *const played = new KelPlayTimeLable;
        for (QWidget *const control :
             {static_cast<QWidget *>(new KelPlayCtrlWidget), static_cast<QWidget *>(played),
              static_cast<QWidget *>(new KelRecordTimeLable), static_cast<QWidget *>(new KelRecordFpsLabel),
              static_cast<QWidget *>(new PlaySpeedLabel)})
            layout->addWidget(control);
        window.show();
        QCOMPARE(controlFaults(&window).join('\n'), QString());
        for (const QWidget *const label :
             {static_cast<QWidget *>(played), window.findChild<QWidget *>("playTimeLabel")})
            QVERIFY(!label->accessibleName().isEmpty() && !label->toolTip().isEmpty());
    }

private:
    /// The state of a button is its text, a single glyph.
    template <typename Button>
    void checkButton(const char *name, bool (Button::*isOn)() const, void (Button::*setOn)(bool),
                     void (Button::*clicked)(bool), char16_t off, char16_t on, bool otherTextIsOn)
    {
        Button button;
        QSignalSpy clicks(&button, clicked);
        QCOMPARE(button.objectName(), QString(name));
        QVERIFY(!(button.*isOn)());
        QCOMPARE(button.text(), QString(QChar(off)));
        const QString offAction = button.toolTip();

        (button.*setOn)(true);
        (button.*setOn)(true);
        QCOMPARE(button.text(), QString(QChar(on)));
        QVERIFY((button.*isOn)());
        QVERIFY(clicks.isEmpty());
        QVERIFY(button.toolTip() != offAction);
        QCOMPARE(button.accessibleName(), button.toolTip());

        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(button.text(), QString(QChar(off)));
        QCOMPARE(button.toolTip(), offAction);
        QTest::keyClick(&button, Qt::Key_Space);
        QCOMPARE(button.text(), QString(QChar(on)));
        QCOMPARE(clicks, (QList<QVariantList>{{false}, {true}}));

        button.setText("?");
        QCOMPARE((button.*isOn)(), otherTextIsOn);
    }
};

QTEST_MAIN(MovieControlsTest)
#include "tst_movie_controls.moc"
